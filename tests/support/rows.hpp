// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_ROWS_HPP
#define VELDRA_TESTS_SUPPORT_ROWS_HPP

#include "support/database.hpp"

#include <map>
#include <string>

namespace veldra_tests {

/// Values of columns as SQL expressions: {{"name", "'Oak'"}, {"code", "NULL"}}.
using Columns = std::map<std::string, std::string>;

/// Inserts a row with plain SQL.
void put_row(PlainDatabase& database, const std::string& table, const Columns& columns);

/// Insert a row of the table; columns that are not given get the defaults of a new object. A
/// material gets the type with id 4, which is "Generic" in a new library.
///
///     put_material(database, {{"id", "7"}, {"name", "'Oak'"}, {"code", "NULL"}});
void put_material(PlainDatabase& database, const Columns& columns);
void put_composition(PlainDatabase& database, const Columns& columns);

/// Insert both rows of an asset with that id and numbers that all differ.
void put_structural_asset(PlainDatabase& database, const std::string& id);
void put_thermal_asset(PlainDatabase& database, const std::string& id);

/// An SQL text literal.
std::string quoted(const std::string& text);

/// The row with that id, by the names of the columns, in the form of `Row`.
Columns row_of(PlainDatabase& database, const std::string& table, const std::string& id);

}  // namespace veldra_tests

#endif
