// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_CATALOGUES_HPP
#define VELDRA_TESTS_SUPPORT_CATALOGUES_HPP

#include <string>

namespace veldra_tests {

// The texts that SQLite keeps of a library file, written by hand: what `catalogue(path)` must give.
// They are the file format; a difference here means that files of other versions of the library
// will not fit.

/// Of a file that the current version made.
std::string current_catalogue();

/// The statements that make a current file with plain SQLite: without material types, in inches,
/// with the GUID a0ee4c58-3c1d-4c07-9d0e-5f54c1a8f6b2, the locale "de-DE" and the region
/// "Ostschweiz".
std::string current_file_statements();

/// Of a file that an older version made: 150201 has no custom properties and no drawing layers,
/// 150301 no drawing layers.
std::string old_catalogue(int version);

/// Of such an older file after it was brought to the current version.
std::string migrated_catalogue(int version);

/// Makes a file of an older version at `path` with plain SQLite, without any rows but the version
/// and the same metadata.
void make_old_file(const std::string& path, int version);

/// Fills a file of an older version with rows of every table that it has: two objects of each
/// kind that refer to each other, texts beyond ASCII, and NULL in every column that allows it.
void fill_old_file(const std::string& path, int version);

/// All rows that such a filled file must have after it was brought to the current version, as
/// `dump` gives them, when `before` is what it gave for the old file.
std::string migrated_dump(const std::string& before);

}  // namespace veldra_tests

#endif
