# Debian packages: cpack in the build folder, or scripts/package.sh. One package per installed part.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumivane)
set(CPACK_PACKAGE_VENDOR "The Lumivane developers")
set(CPACK_PACKAGE_CONTACT "The Lumivane developers <lumivane@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Our libraries find each other among the build's files, since no package holds them yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  "${PROJECT_BINARY_DIR}/src" "${PROJECT_BINARY_DIR}/src/measure" "${PROJECT_BINARY_DIR}/src/visibility"
  "${PROJECT_BINARY_DIR}/src/importers" "${PROJECT_BINARY_DIR}/src/pictures")

set(soversion "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
set(exact "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME "liblumivane${soversion}")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "${PROJECT_DESCRIPTION} (the library)")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liblumivane-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "liblumivane${soversion} ${exact}, libvtk9-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION} (headers, CMake and pkg-config files)")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME lumivane)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "liblumivane${soversion} ${exact}")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "xvfb, xauth, libgdal32")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "${PROJECT_DESCRIPTION} (the programs)")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME lumivane-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SHLIBDEPS OFF)
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION
  "${PROJECT_DESCRIPTION} (pages, examples and the reference)")

set(CPACK_COMPONENTS_ALL library development documentation)
if(TARGET lumivane_measure)
  list(APPEND CPACK_COMPONENTS_ALL components)
  set(CPACK_DEBIAN_COMPONENTS_PACKAGE_NAME "liblumivane-components${soversion}")
  set(CPACK_DEBIAN_COMPONENTS_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_COMPONENTS_PACKAGE_DEPENDS "liblumivane${soversion} ${exact}")
  set(CPACK_COMPONENT_COMPONENTS_DESCRIPTION
    "${PROJECT_DESCRIPTION} (importers, vector pictures, exact maps and measures)")
  string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    ", liblumivane-components${soversion} ${exact}")
  string(APPEND CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS
    ", liblumivane-components${soversion} ${exact}")
endif()
if(TARGET lumivane_host)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(TARGET lumivane_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-lumivane)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  # The module is for one minor version of Python alone.
  math(EXPR next_python "${Python_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "liblumivane${soversion} ${exact}, liblumivane-components${soversion} ${exact}, python3-numpy, python3 (>= 3.${Python_VERSION_MINOR}), python3 (<< 3.${next_python})")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS
    "python3-scipy, python3-matplotlib, python3-geopandas, python3-xarray, python3-distributed, python3-mpi4py")
  set(CPACK_COMPONENT_PYTHON_DESCRIPTION "${PROJECT_DESCRIPTION} (for Python)")
endif()
include(CPack)
