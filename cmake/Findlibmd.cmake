# SPDX-License-Identifier: GPL-2.0-or-later
# Finds the library that computes sums of SHA-256, as the target libmd::libmd.
find_path(LIBMD_INCLUDE sha2.h)
find_library(LIBMD_LIBRARY md)
mark_as_advanced(LIBMD_INCLUDE LIBMD_LIBRARY)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(libmd REQUIRED_VARS LIBMD_LIBRARY LIBMD_INCLUDE)
if(libmd_FOUND AND NOT TARGET libmd::libmd)
  add_library(libmd::libmd UNKNOWN IMPORTED)
  set_target_properties(libmd::libmd PROPERTIES
    IMPORTED_LOCATION ${LIBMD_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${LIBMD_INCLUDE})
endif()
