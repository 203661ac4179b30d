# SPDX-License-Identifier: GPL-2.0-or-later
# What the shared libraries export: the symbols that VELDRA_EXPORT and VELDRA_KIT_EXPORT name, and
# nothing of what the runtime's and the standard library's templates leave in them on their way.
function(veldra_export target exports)
  target_link_options(${target} PRIVATE -Wl,--version-script=${exports})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exports})
endfunction()

veldra_export(veldra ${PROJECT_SOURCE_DIR}/cmake/veldra.map)
if(VELDRA_HAS_KIT)
  veldra_export(veldra_kit ${PROJECT_SOURCE_DIR}/cmake/veldra-kit.map)
endif()
