# SPDX-License-Identifier: GPL-2.0-or-later
# Whether the Python module is built, as VELDRA_HAS_PYTHON. It needs the kit, and an interpreter that
# can load what is built: with instruments it needs their libraries loaded before (scripts/soak python
# does it), so that it is left out there unless somebody asks for it.
set(VELDRA_HAS_PYTHON OFF)
set(asked OFF)
if(VELDRA_BUILD_PYTHON AND NOT VELDRA_BUILD_PYTHON STREQUAL AUTO)
  set(asked ON)
endif()
if(NOT VELDRA_HAS_KIT)
  if(asked)
    message(FATAL_ERROR "VELDRA_BUILD_PYTHON is ${VELDRA_BUILD_PYTHON}, and the Python module needs the kit")
  endif()
  return()
endif()
if((VELDRA_SANITIZERS OR VELDRA_COVERAGE) AND NOT asked)
  return()
endif()

# Debian's interpreter is the one for which its pybind11 and pytest are.
find_program(VELDRA_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH
             DOC "The interpreter for which the Python module is built")
if(VELDRA_PYTHON AND NOT DEFINED Python3_EXECUTABLE)
  set(Python3_EXECUTABLE ${VELDRA_PYTHON})
endif()
find_package(Python3 QUIET COMPONENTS Interpreter Development.Module)
veldra_part(PYTHON "the Python module" Python3 Python3::Module pybind11 pybind11::module)
if(VELDRA_HAS_PYTHON)
  set(VELDRA_PYTHON_FOLDER
      lib/python${Python3_VERSION_MAJOR}.${Python3_VERSION_MINOR}/dist-packages
      CACHE STRING "Where the Python package is installed, below the prefix")
endif()
