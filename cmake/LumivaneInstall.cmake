include(CMakePackageConfigHelpers)
set(LUMIVANE_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/Lumivane")

# Three parts, which are also the packages of LumivanePackages.cmake: library, development, tools;
# what is beside the core is the part components.
function(lumivane_install_library target export part)
  install(TARGETS ${target}
    EXPORT ${export}
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT ${part}
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${part}
            NAMELINK_COMPONENT development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
  install(EXPORT ${export} NAMESPACE Lumivane::
    DESTINATION "${LUMIVANE_CMAKE_DIR}" COMPONENT development)
endfunction()

lumivane_install_library(lumivane LumivaneTargets library)
# Each component beside the core has a target file of its own, so that one may be installed without
# the others.
foreach(component visibility measure importers pictures)
  if(TARGET lumivane_${component})
    lumivane_install_library(lumivane_${component} Lumivane_${component}Targets components)
  endif()
endforeach()

configure_package_config_file(cmake/LumivaneConfig.cmake.in
  "${PROJECT_BINARY_DIR}/LumivaneConfig.cmake" INSTALL_DESTINATION "${LUMIVANE_CMAKE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/LumivaneConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/LumivaneConfig.cmake"
  "${PROJECT_BINARY_DIR}/LumivaneConfigVersion.cmake"
  DESTINATION "${LUMIVANE_CMAKE_DIR}" COMPONENT development)

# For builds without CMake: pkg-config --cflags --libs lumivane. VTK has no such file of its own, so
# its folder and the libraries that our headers use stand in ours.
get_target_property(LUMIVANE_VTK_INCLUDES VTK::CommonCore INTERFACE_INCLUDE_DIRECTORIES)
list(TRANSFORM LUMIVANE_VTK_INCLUDES PREPEND "-I")
list(JOIN LUMIVANE_VTK_INCLUDES " " LUMIVANE_VTK_CFLAGS)
set(LUMIVANE_VTK_LIBS "")
foreach(module CommonCore CommonDataModel RenderingCore)
  string(APPEND LUMIVANE_VTK_LIBS " -lvtk${module}-${VTK_VERSION}")
endforeach()
string(REGEX REPLACE "-([0-9]+\\.[0-9]+)[0-9.]*" "-\\1" LUMIVANE_VTK_LIBS "${LUMIVANE_VTK_LIBS}")
file(RELATIVE_PATH LUMIVANE_PC_PREFIX
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(cmake/lumivane.pc.in "${PROJECT_BINARY_DIR}/lumivane.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/lumivane.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)

# A file for each component: pkg-config --cflags --libs lumivane-measure.
set(LUMIVANE_PC_visibility "lumivane")
set(LUMIVANE_PC_measure "lumivane lumivane-visibility")
set(LUMIVANE_PC_importers "lumivane")
set(LUMIVANE_PC_pictures "lumivane lumivane-visibility lumivane-measure")
foreach(component visibility measure importers pictures)
  if(TARGET lumivane_${component})
    set(LUMIVANE_PC_REQUIRES "${LUMIVANE_PC_${component}}")
    configure_file(cmake/lumivane-component.pc.in
      "${PROJECT_BINARY_DIR}/lumivane-${component}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/lumivane-${component}.pc"
      DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
  endif()
endforeach()

# The pages, the examples, and the reference of the headers where Doxygen is there to make it.
set(LUMIVANE_DOC_DIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/lumivane-doc")
install(FILES README.md CHANGELOG.md LICENSE
  DESTINATION "${LUMIVANE_DOC_DIR}" COMPONENT documentation)
install(DIRECTORY docs examples scenes
  DESTINATION "${LUMIVANE_DOC_DIR}" COMPONENT documentation
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.svg" PATTERN "*.json" PATTERN "*.cpp"
    PATTERN "*.py")
find_program(LUMIVANE_DOXYGEN doxygen)
mark_as_advanced(LUMIVANE_DOXYGEN)
if(LUMIVANE_DOXYGEN)
  configure_file(cmake/make_reference.cmake.in "${PROJECT_BINARY_DIR}/make_reference.cmake" @ONLY)
  install(SCRIPT "${PROJECT_BINARY_DIR}/make_reference.cmake" COMPONENT documentation)
  install(DIRECTORY "${PROJECT_BINARY_DIR}/reference/html/"
    DESTINATION "${LUMIVANE_DOC_DIR}/reference" COMPONENT documentation)
endif()

if(PROJECT_IS_TOP_LEVEL)
  include(cmake/LumivanePackages.cmake)
endif()
