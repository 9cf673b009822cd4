# Finds Python, and says in TARN_PYTHON_FOUND whether the package `tarn` is built.

# The packages of tools/packages.txt are those of the Python of the system. So that one is taken, even if there is another
# one on the path, unless a virtual environment is active or the caller names one.
if(PROJECT_IS_TOP_LEVEL AND NOT Python3_EXECUTABLE AND NOT DEFINED ENV{VIRTUAL_ENV})
  find_program(Python3_EXECUTABLE NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH)
endif()

set(TARN_PYTHON_FOUND OFF)
if(TARN_PYTHON STREQUAL "AUTO" AND PROJECT_IS_TOP_LEVEL)
  find_package(Python3 3.11 COMPONENTS Interpreter Development.Module QUIET)
  find_package(pybind11 CONFIG QUIET)
  if(Python3_Development.Module_FOUND AND pybind11_FOUND)
    set(TARN_PYTHON_FOUND ON)
  else()
    message(STATUS "The package tarn for Python is not built: it needs python3-dev and pybind11-dev")
  endif()
elseif(TARN_PYTHON AND NOT TARN_PYTHON STREQUAL "AUTO")
  find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter Development.Module)
  find_package(pybind11 CONFIG REQUIRED)
  set(TARN_PYTHON_FOUND ON)
endif()
