// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/version.hpp>

#include <odb/version.hxx>

#include <sqlite3.h>

#define VELDRA_TEXT_OF(number) #number
#define VELDRA_TEXT(number) VELDRA_TEXT_OF(number)

namespace veldra {

Version version() noexcept {
  return {VELDRA_VERSION_MAJOR, VELDRA_VERSION_MINOR, VELDRA_VERSION_PATCH};
}

const char* version_text() noexcept {
  return VELDRA_TEXT(VELDRA_VERSION_MAJOR) "." VELDRA_TEXT(VELDRA_VERSION_MINOR) "." VELDRA_TEXT(
      VELDRA_VERSION_PATCH);
}

const char* sqlite_version_text() noexcept { return sqlite3_libversion(); }

const char* runtime_version_text() noexcept { return LIBODB_VERSION_STR; }

}  // namespace veldra
