# SPDX-License-Identifier: GPL-2.0-or-later
# Finds the library that reads ZIP archives, as the target minizip::minizip.
find_path(MINIZIP_INCLUDE minizip/unzip.h)
find_library(MINIZIP_LIBRARY minizip)
mark_as_advanced(MINIZIP_INCLUDE MINIZIP_LIBRARY)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(minizip REQUIRED_VARS MINIZIP_LIBRARY MINIZIP_INCLUDE)
if(minizip_FOUND AND NOT TARGET minizip::minizip)
  add_library(minizip::minizip UNKNOWN IMPORTED)
  set_target_properties(minizip::minizip PROPERTIES
    IMPORTED_LOCATION ${MINIZIP_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${MINIZIP_INCLUDE})
endif()
