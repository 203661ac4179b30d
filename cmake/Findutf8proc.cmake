# SPDX-License-Identifier: GPL-2.0-or-later
# Finds the library that knows Unicode, as the target utf8proc::utf8proc.
find_path(UTF8PROC_INCLUDE utf8proc.h)
find_library(UTF8PROC_LIBRARY utf8proc)
mark_as_advanced(UTF8PROC_INCLUDE UTF8PROC_LIBRARY)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(utf8proc REQUIRED_VARS UTF8PROC_LIBRARY UTF8PROC_INCLUDE)
if(utf8proc_FOUND AND NOT TARGET utf8proc::utf8proc)
  add_library(utf8proc::utf8proc UNKNOWN IMPORTED)
  set_target_properties(utf8proc::utf8proc PROPERTIES
    IMPORTED_LOCATION ${UTF8PROC_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${UTF8PROC_INCLUDE})
endif()
