// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_RECOGNITION_HPP
#define VELDRA_STORE_RECOGNITION_HPP

#include <veldra/library.hpp>

#include <odb/forward.hxx>
#include <odb/sqlite/connection.hxx>

namespace veldra {

/// What the tables of a database say. A transaction must be current. Reads tables only: a view in
/// place of one may have no end.
Library::Recognition recognise_tables(odb::sqlite::connection& connection);

/// The version that the file says, told apart from one that means nothing.
struct FileVersion {
  bool known;
  odb::schema_version number;  ///< 0 for a file that says none
};

FileVersion version_of(odb::sqlite::connection& connection);

/// Throws `odb::sqlite::database_exception` when the end of the last page is missing. SQLite
/// notices when whole pages are missing, but takes the rest of one that was cut off for zeros.
void require_whole_pages(odb::sqlite::connection& connection);

/// What a file is; none becomes a library by that.
Library::Recognition recognise_file(const String& filename);

}  // namespace veldra

#endif
