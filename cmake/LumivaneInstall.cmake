include(CMakePackageConfigHelpers)
set(LUMIVANE_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/Lumivane")

install(TARGETS lumivane
  EXPORT LumivaneTargets
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT LumivaneTargets NAMESPACE Lumivane:: DESTINATION "${LUMIVANE_CMAKE_DIR}")

# Each component beside the core has a target file of its own, so that one may be installed without
# the others.
foreach(component measure exchange)
  if(TARGET lumivane_${component})
    install(TARGETS lumivane_${component}
      EXPORT Lumivane_${component}Targets
      RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
      LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
      ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
      FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
    install(EXPORT Lumivane_${component}Targets NAMESPACE Lumivane::
      DESTINATION "${LUMIVANE_CMAKE_DIR}")
  endif()
endforeach()

configure_package_config_file(cmake/LumivaneConfig.cmake.in
  "${PROJECT_BINARY_DIR}/LumivaneConfig.cmake" INSTALL_DESTINATION "${LUMIVANE_CMAKE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/LumivaneConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/LumivaneConfig.cmake"
  "${PROJECT_BINARY_DIR}/LumivaneConfigVersion.cmake"
  DESTINATION "${LUMIVANE_CMAKE_DIR}")
