// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_EXPORT_HPP
#define VELDRA_EXPORT_HPP

/// Marks the classes and functions that the shared library exports. Everything else in the library
/// is hidden. The attribute is that of g++ and clang++.
#define VELDRA_EXPORT __attribute__((visibility("default")))

#endif
