// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_VERSION_HPP
#define VELDRA_VERSION_HPP

#include <veldra/export.hpp>

/// The release that a host is compiled with. The build of the library reads it here as well.
#define VELDRA_VERSION_MAJOR 1
#define VELDRA_VERSION_MINOR 1
#define VELDRA_VERSION_PATCH 0

/// The same as one number, to compare: 10100 for 1.1.0.
#define VELDRA_VERSION \
  (VELDRA_VERSION_MAJOR * 10000 + VELDRA_VERSION_MINOR * 100 + VELDRA_VERSION_PATCH)

namespace veldra {

/// A release. With the same `major`, a host that was built with a lower one runs with a higher one.
struct Version {
  int major;
  int minor;
  int patch;
};

/// The release of the shared library that runs; it may be newer than the one that the host was
/// compiled with.
VELDRA_EXPORT Version version() noexcept;

/// The same as a text, such as "1.1.0". Lives as long as the program.
VELDRA_EXPORT const char* version_text() noexcept;

/// The release of SQLite that runs, such as "3.40.1". Lives as long as the program.
VELDRA_EXPORT const char* sqlite_version_text() noexcept;

/// The release of the persistence runtime that the library was built with, such as "2.4.0". Lives
/// as long as the program.
VELDRA_EXPORT const char* runtime_version_text() noexcept;

}  // namespace veldra

#endif
