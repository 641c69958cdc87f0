# Sets LUMIVANE_BUILD_PYTHON, which is on where the Python package can be built, and
# Python_EXECUTABLE.
# On Debian the system's own Python is taken, for which Debian's packages of numpy and pybind11 are,
# and not another python3 that comes first in the path.
set(LUMIVANE_PYTHON_POSSIBLE OFF)
set(LUMIVANE_PYTHON_MISSING "")
if(NOT SKBUILD AND NOT Python_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "The Python that the package is built for")
endif()
if(NOT LUMIVANE_BUILD_TOOLS)
  set(LUMIVANE_PYTHON_MISSING "the components of LUMIVANE_BUILD_TOOLS")
elseif(LUMIVANE_SANITIZE OR LUMIVANE_BUILD_FUZZ)
  # A sanitizer must be loaded before all else, and the interpreter is not built with it.
  set(LUMIVANE_PYTHON_MISSING "a build without sanitizers")
else()
  find_package(Python 3.9 QUIET COMPONENTS Interpreter Development.Module NumPy)
  if(NOT Python_Interpreter_FOUND)
    set(LUMIVANE_PYTHON_MISSING "Python 3.9 or later (python3)")
  elseif(NOT Python_Development.Module_FOUND)
    set(LUMIVANE_PYTHON_MISSING "the headers of ${Python_EXECUTABLE} (python3-dev)")
  elseif(NOT Python_NumPy_FOUND)
    set(LUMIVANE_PYTHON_MISSING "numpy for ${Python_EXECUTABLE} (python3-numpy)")
  else()
    set(PYBIND11_FINDPYTHON ON)
    find_package(pybind11 2.10 CONFIG QUIET)
    if(pybind11_FOUND)
      set(LUMIVANE_PYTHON_POSSIBLE ON)
    else()
      set(LUMIVANE_PYTHON_MISSING "pybind11 2.10 or later (pybind11-dev)")
    endif()
  endif()
endif()

include(CMakeDependentOption)
cmake_dependent_option(LUMIVANE_BUILD_PYTHON "Build the Python package" ${PROJECT_IS_TOP_LEVEL}
  LUMIVANE_PYTHON_POSSIBLE OFF)
if(NOT LUMIVANE_PYTHON_POSSIBLE)
  message(STATUS "Python package: not built, for it needs ${LUMIVANE_PYTHON_MISSING}")
endif()
