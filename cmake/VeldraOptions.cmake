# SPDX-License-Identifier: GPL-2.0-or-later
# What can be chosen, and what holds for everything that is built here.

option(VELDRA_BUILD_EXAMPLES "Build the example hosts" ${PROJECT_IS_TOP_LEVEL})
option(VELDRA_BUILD_BENCHMARKS "Build the benchmarks" OFF)
option(VELDRA_WARNINGS_AS_ERRORS "Stop at warnings" ${PROJECT_IS_TOP_LEVEL})
set(VELDRA_TEST_FOLDERS foundation guide install objects reliability store kit tools program fuzz
    CACHE STRING "Which tests to build")
option(VELDRA_TEST_WHOLE_PROGRAMS "Run the tests of a program in one process" OFF)
set(VELDRA_SANITIZERS "" CACHE STRING "Sanitizers to build with, such as address,undefined")
option(VELDRA_COVERAGE "Measure which lines are run" OFF)
option(VELDRA_BRIEF_DEBUG_INFO
       "Debug information of lines only for all but the libraries, which is built faster" OFF)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

add_library(veldra_options INTERFACE)
# The macros of the test framework leave out what `...` stands for.
target_compile_options(veldra_options INTERFACE -Wall -Wextra -Wpedantic
  $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
if(VELDRA_WARNINGS_AS_ERRORS)
  target_compile_options(veldra_options INTERFACE -Werror)
endif()
if(VELDRA_SANITIZERS)
  # Errors of undefined behaviour must end the program, or no test would see them.
  set(flags -fsanitize=${VELDRA_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # What g++ then takes for uninitialized is the standard library's and is not.
  target_compile_options(veldra_options INTERFACE ${flags}
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(veldra_options INTERFACE ${flags})
endif()
if(VELDRA_COVERAGE)
  target_compile_options(veldra_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(veldra_options INTERFACE --coverage)
endif()
