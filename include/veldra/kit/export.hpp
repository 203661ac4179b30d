// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXPORT_HPP
#define VELDRA_KIT_EXPORT_HPP

/// Marks the classes and functions that the kit exports. Everything else in it is hidden. The
/// attribute is that of g++ and clang++.
#define VELDRA_KIT_EXPORT __attribute__((visibility("default")))

#endif
