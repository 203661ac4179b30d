// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_VERSION_HPP
#define VELDRA_VERSION_HPP

#include <veldra/export.hpp>

/// The first number of the release with which a host is compiled. Another one means that hosts must
/// be built anew. The build of the library reads the three numbers here as well.
#define VELDRA_VERSION_MAJOR 1

/// The second number of the release: a higher one means that functions were added.
#define VELDRA_VERSION_MINOR 1

/// The third number of the release: a higher one means that defects were mended.
#define VELDRA_VERSION_PATCH 0

/// The release as one number, to compare: 10100 for 1.1.0.
#define VELDRA_VERSION \
  (VELDRA_VERSION_MAJOR * 10000 + VELDRA_VERSION_MINOR * 100 + VELDRA_VERSION_PATCH)

namespace veldra {

/// A release. A host that was built with one release runs with every higher one that has the same
/// `major`.
struct Version {
  int major;  ///< another one: hosts must be built anew
  int minor;  ///< a higher one: functions were added
  int patch;  ///< a higher one: defects were mended
};

/// The release of the shared library that runs. It may be newer than the release with which the
/// host was compiled (`VELDRA_VERSION`).
VELDRA_EXPORT Version version() noexcept;

/// The release of the shared library as a text, such as "1.1.0". Valid as long as the program runs.
VELDRA_EXPORT const char* version_text() noexcept;

/// The release of SQLite that runs, such as "3.40.1". Valid as long as the program runs.
VELDRA_EXPORT const char* sqlite_version_text() noexcept;

/// The release of the persistence runtime with which the library was built, such as "2.4.0". Valid
/// as long as the program runs.
VELDRA_EXPORT const char* runtime_version_text() noexcept;

}  // namespace veldra

#endif
