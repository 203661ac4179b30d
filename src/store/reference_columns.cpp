// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/reference_columns.hpp"

#include "store/database.hpp"
#include "store/file_schema.hpp"
#include "store/kinds.hpp"
#include "store/statement.hpp"

#include <map>

namespace veldra {

namespace {

using Columns = std::vector<ReferenceColumn>;

/// Of a list of an object, the column that says whose it is.
constexpr const char* owner_column = "object_id";

/// Calls `use` with each kind, assets included.
template <class Use>
void for_each_kind_and_assets(Use use) {
  use(OfKind<Asset>());
  for_each_kind(use);
}

/// The kinds whose objects lie in the tables; those of assets lie in two.
std::map<std::string, ObjectType> kinds_by_table() {
  std::map<std::string, ObjectType> kinds;
  for_each_kind_and_assets([&kinds](auto kind) {
    using T = typename decltype(kind)::type;
    kinds[Kind<T>::table] = ObjectTraits<T>::type;
    for (const std::string& table : Kind<T>::lists()) kinds[table] = ObjectTraits<T>::type;
  });
  return kinds;
}

/// Appends the columns of one table.
void add_columns(odb::sqlite::connection& connection, const ReferenceColumn& of_table,
                 const std::map<std::string, ObjectType>& kinds, Columns& columns) {
  Statement row(connection, R"sql(SELECT "from", "table" FROM pragma_foreign_key_list(?1))sql");
  row.bind(1, of_table.table.c_str());
  while (row.next()) {
    ReferenceColumn column = of_table;
    column.column = row.text(0);
    // The other keys say whose part a row is.
    if (column.column == owner_column || column.column == "id") continue;
    column.to = kinds.at(row.text(1));
    columns.push_back(std::move(column));
  }
}

Columns columns_of(odb::sqlite::connection& connection) {
  const auto kinds = kinds_by_table();
  Columns columns;
  for_each_kind_and_assets([&](auto kind) {
    using T = typename decltype(kind)::type;
    constexpr ObjectType type = ObjectTraits<T>::type;
    const std::string owners = Kind<T>::table;
    add_columns(connection, {type, owners, owners, "id", "", type}, kinds, columns);
    for (const std::string& list : Kind<T>::lists()) {
      add_columns(connection, {type, owners, list, owner_column, "", type}, kinds, columns);
    }
  });
  return columns;
}

}  // namespace

const Columns& reference_columns() {
  static const Columns columns = [] {
    Columns found;
    in_expected_schema([&found](auto& connection) { found = columns_of(connection); });
    return found;
  }();
  return columns;
}

}  // namespace veldra
