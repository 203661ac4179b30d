// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/rows.hpp"

#include <stdexcept>

namespace veldra_tests {

namespace {

Columns over(Columns defaults, const Columns& columns) {
  for (const auto& column : columns) defaults[column.first] = column.second;
  return defaults;
}

const Columns& material_defaults() {
  static const Columns defaults = [] {
    Columns columns = {{"type", "4"},
                       {"shading_use_appearance", "0"},
                       {"function", "0"},
                       {"allow_custom_thickness", "1"},
                       {"surface_pattern_alignment_x", "0"},
                       {"surface_pattern_alignment_y", "0"}};
    for (const char* text : {"description", "comments", "cost", "keynote", "label", "manufacturer",
                             "mark", "model", "url", "classification", "appearance"}) {
      columns[text] = "''";
    }
    for (const char* color : {"shading_color", "surface_pattern_color", "cut_pattern_color"}) {
      for (const char* part : {"_red", "_green", "_blue", "_alpha"}) {
        columns[std::string(color) + part] = "0";
      }
    }
    for (const std::string pattern : {"surface_pattern", "cut_pattern"}) {
      columns[pattern + "_type"] = "-1";
      columns[pattern + "_name"] = "''";
      columns[pattern + "_scale"] = "1";
      columns[pattern + "_angle"] = "0";
      columns[pattern + "_cross"] = "0";
    }
    return columns;
  }();
  return defaults;
}

void put_asset(PlainDatabase& database, const std::string& id, const std::string& type) {
  put_row(database, "Asset",
          {{"id", id},
           {"typeid", quoted("veldra::" + type)},
           {"name", quoted(type + " " + id)},
           {"description", quoted(type + " " + id + " description")}});
}

}  // namespace

void put_row(PlainDatabase& database, const std::string& table, const Columns& columns) {
  std::string names, values;
  for (const auto& column : columns) {
    names += (names.empty() ? "\"" : ", \"") + column.first + "\"";
    values += (values.empty() ? "" : ", ") + column.second;
  }
  database.execute("INSERT INTO \"" + table + "\" (" + names + ") VALUES (" + values + ")");
}

void put_material(PlainDatabase& database, const Columns& columns) {
  put_row(database, "Material", over(material_defaults(), columns));
}

void put_composition(PlainDatabase& database, const Columns& columns) {
  put_row(database, "Composition",
          over({{"description", "''"},
                {"type", "128"},
                {"comments", "''"},
                {"first_core_layer", "0"},
                {"last_core_layer", "0"},
                {"structural_layer", "0"},
                {"variable_layer_min_thickness", "0"}},
               columns));
}

void put_structural_asset(PlainDatabase& database, const std::string& id) {
  put_asset(database, id, "StructuralAsset");
  put_row(database, "StructuralAsset",
          {{"id", id},
           {"subclass", quoted("Wood")},
           {"density", "1.5"},
           {"specific_heat", "2.5"},
           {"thermal_conductivity", "3.5"}});
}

void put_thermal_asset(PlainDatabase& database, const std::string& id) {
  put_asset(database, id, "ThermalAsset");
  put_row(database, "ThermalAsset",
          {{"id", id},
           {"subclass", quoted("Solid")},
           {"source", quoted("Tables")},
           {"density", "1.25"},
           {"emissivity", "2.25"},
           {"specific_heat", "3.25"},
           {"thermal_conductivity", "4.25"}});
}

std::string quoted(const std::string& text) {
  std::string literal = "'";
  for (const char character : text) literal += character == '\'' ? "''" : std::string(1, character);
  return literal + "'";
}

Columns row_of(PlainDatabase& database, const std::string& table, const std::string& id) {
  const Rows rows = database.query("SELECT * FROM \"" + table + "\" WHERE \"id\"=" + id);
  if (rows.empty()) throw std::runtime_error("no row " + id + " in " + table);
  const Rows columns = database.query("PRAGMA table_info(\"" + table + "\")");
  Columns row;
  for (std::size_t column = 0; column != columns.size(); ++column) {
    const std::string& name = columns[column][1];
    row[name.substr(1, name.size() - 2)] = rows[0][column];
  }
  return row;
}

}  // namespace veldra_tests
