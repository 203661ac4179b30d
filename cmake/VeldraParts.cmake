# SPDX-License-Identifier: GPL-2.0-or-later
# Which parts are built beside the library.
#
#   veldra_part(<NAME> <what it is> [<package> <a target of it>]...)
#
# VELDRA_BUILD_<NAME> is ON, OFF or AUTO. ON stops where a package is missing; AUTO leaves the part
# out there, and says so. A project that has veldra within itself gets none unasked.
# VELDRA_HAS_<NAME> tells what came of it.
function(veldra_part name text)
  set(default OFF)
  if(PROJECT_IS_TOP_LEVEL)
    set(default AUTO)
  endif()
  set(VELDRA_BUILD_${name} ${default} CACHE STRING "Build ${text}: ON, OFF, or AUTO where it can be")
  set_property(CACHE VELDRA_BUILD_${name} PROPERTY STRINGS AUTO ON OFF)
  set(wanted ${VELDRA_BUILD_${name}})
  set(VELDRA_HAS_${name} OFF PARENT_SCOPE)
  if(NOT wanted STREQUAL AUTO AND NOT wanted)
    return()
  endif()

  set(missing)
  set(needs ${ARGN})
  while(needs)
    list(POP_FRONT needs package target)
    find_package(${package} QUIET)
    if(NOT TARGET ${target})
      list(APPEND missing ${package})
    endif()
  endwhile()
  if(NOT missing)
    set(VELDRA_HAS_${name} ON PARENT_SCOPE)
    return()
  endif()
  list(JOIN missing ", " missing)
  if(NOT wanted STREQUAL AUTO)
    message(FATAL_ERROR "VELDRA_BUILD_${name} is ${wanted}, and ${text} cannot be built without: ${missing}")
  endif()
  message(STATUS "Leaving out ${text}, which cannot be built without: ${missing}")
endfunction()
