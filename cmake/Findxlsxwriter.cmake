# SPDX-License-Identifier: GPL-2.0-or-later
# Finds the library that writes workbooks, as the target xlsxwriter::xlsxwriter.
find_path(XLSXWRITER_INCLUDE xlsxwriter.h)
find_library(XLSXWRITER_LIBRARY xlsxwriter)
mark_as_advanced(XLSXWRITER_INCLUDE XLSXWRITER_LIBRARY)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(xlsxwriter REQUIRED_VARS XLSXWRITER_LIBRARY XLSXWRITER_INCLUDE)
if(xlsxwriter_FOUND AND NOT TARGET xlsxwriter::xlsxwriter)
  add_library(xlsxwriter::xlsxwriter UNKNOWN IMPORTED)
  set_target_properties(xlsxwriter::xlsxwriter PROPERTIES
    IMPORTED_LOCATION ${XLSXWRITER_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${XLSXWRITER_INCLUDE})
endif()
