# SPDX-License-Identifier: GPL-2.0-or-later
# What the shared library exports: the symbols that VELDRA_EXPORT names, and nothing of what the
# runtime's and the standard library's templates leave in it on their way.
set(exports ${PROJECT_SOURCE_DIR}/cmake/veldra.map)
target_link_options(veldra PRIVATE -Wl,--version-script=${exports})
set_property(TARGET veldra APPEND PROPERTY LINK_DEPENDS ${exports})
