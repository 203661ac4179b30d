// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_EXPORT_HPP
#define VELDRA_EXPORT_HPP

/// Marks what the shared library exports; everything else in it is hidden.
#define VELDRA_EXPORT __attribute__((visibility("default")))

#endif
