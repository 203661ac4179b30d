// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_COLUMNS_HPP
#define VELDRA_TOOL_COLUMNS_HPP

#include "json.hpp"
#include "kit.hpp"
#include "table.hpp"

#include <string>
#include <vector>

namespace veldra_tool {

/// The fields that a list of objects of a kind shows when nobody says which.
std::vector<std::string> usual_columns(veldra::ObjectType kind);

/// The head of a column with the values of a field, with its unit.
Table::Column column_of(const kit::FieldDescription& field, veldra::Unit unit);

/// A value for people, without its unit.
std::string cell_of(const kit::FieldDescription& field, const kit::Value& value, veldra::Unit unit);

/// Some fields of a class.
template <class T>
using Columns = std::vector<const kit::Field<T>*>;

/// The fields of these names. Throws `kit::UnknownField`.
template <class T>
Columns<T> columns_named(const kit::Fields<T>& fields, const std::vector<std::string>& names) {
  Columns<T> columns;
  for (const auto& name : names) columns.push_back(&fields.at(name));
  return columns;
}

template <class T>
Table table_of(const Columns<T>& columns, veldra::Unit unit) {
  std::vector<Table::Column> heads;
  for (const auto* field : columns) heads.push_back(column_of(*field, unit));
  return Table(heads);
}

template <class T>
std::vector<std::string> cells_of(const T& object, const Columns<T>& columns, veldra::Unit unit) {
  std::vector<std::string> cells;
  for (const auto* field : columns) cells.push_back(cell_of(*field, field->get(object), unit));
  return cells;
}

/// An object whose members are the columns.
template <class T>
Json json_of(const T& object, const Columns<T>& columns, const kit::Fields<T>& fields) {
  Json json = Json::object();
  for (const auto* field : columns) {
    json[fields.short_name(*field)] = value_to_json(field->get(object));
  }
  return json;
}

}  // namespace veldra_tool

#endif
