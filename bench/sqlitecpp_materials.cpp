// SPDX-License-Identifier: GPL-2.0-or-later
#include "otherwise.hpp"

#include <SQLiteCpp/SQLiteCpp.h>

namespace veldra_bench {

namespace {

/// The columns of a row from the left to the right.
class Columns {
 public:
  explicit Columns(SQLite::Statement& row) : row_(row) {}

  std::string text() { return row_.getColumn(next_++).getString(); }
  unsigned id() { return static_cast<unsigned>(row_.getColumn(next_++).getInt64()); }
  int integer() { return row_.getColumn(next_++).getInt(); }
  double real() { return row_.getColumn(next_++).getDouble(); }

  ColorRecord color() {
    ColorRecord color;
    color.red = real();
    color.green = real();
    color.blue = real();
    color.alpha = real();
    return color;
  }

  PatternRecord pattern() {
    PatternRecord pattern;
    pattern.type = integer();
    pattern.name = text();
    pattern.scale = real();
    pattern.angle = real();
    pattern.cross = integer() != 0;
    pattern.color = color();
    return pattern;
  }

 private:
  SQLite::Statement& row_;
  int next_ = 0;
};

MaterialRecord material_in(SQLite::Statement& row) {
  Columns at(row);
  MaterialRecord material;
  material.id = at.id();
  material.name = at.text();
  material.description = at.text();
  material.type = at.id();
  material.comments = at.text();
  material.code = at.text();
  material.cost = at.text();
  material.keynote = at.text();
  material.label = at.text();
  material.manufacturer = at.text();
  material.mark = at.text();
  material.model = at.text();
  material.url = at.text();
  material.classification = at.text();
  material.shading_use_appearance = at.integer() != 0;
  material.shading_color = at.color();
  material.surface_pattern = at.pattern();
  material.alignment_x = at.real();
  material.alignment_y = at.real();
  material.cut_pattern = at.pattern();
  material.cut_layer = at.id();
  material.appearance = at.text();
  at.id();  // of the two assets
  at.id();
  material.function = at.integer();
  material.allow_custom_thickness = at.integer() != 0;
  return material;
}

/// One query for the materials, and three for each of them.
class Reader : public MaterialReader {
 public:
  explicit Reader(const std::string& path)
      : database_(path),
        materials_(database_, "SELECT * FROM Material"),
        tags_(database_, "SELECT tag_id FROM Material_tags WHERE object_id = ? ORDER BY \"index\""),
        thicknesses_(database_, "SELECT value FROM Material_thicknesses WHERE object_id = ?"),
        values_(database_,
                "SELECT property_id, value FROM Material_custom_values WHERE object_id = ?") {}

  Document read() override {
    SQLite::Transaction transaction(database_);
    Document document;
    document.tags = named("SELECT id, name FROM Tag");
    document.types = named("SELECT id, name FROM MaterialType");
    document.layers = named("SELECT id, name FROM Layer");
    document.properties = properties();
    while (materials_.executeStep()) {
      document.materials.push_back(material_in(materials_));
      add_side_rows(document.materials.back());
    }
    materials_.reset();
    transaction.commit();
    return document;
  }

 private:
  std::vector<NamedRecord> named(const char* text) {
    std::vector<NamedRecord> records;
    SQLite::Statement query(database_, text);
    while (query.executeStep()) {
      Columns at(query);
      const unsigned id = at.id();
      records.push_back({id, at.text()});
    }
    return records;
  }

  std::vector<PropertyRecord> properties() {
    std::vector<PropertyRecord> records;
    SQLite::Statement query(database_, "SELECT id, name, object_type FROM CustomProperty");
    while (query.executeStep()) {
      Columns at(query);
      PropertyRecord record;
      record.id = at.id();
      record.name = at.text();
      record.object_type = at.integer();
      records.push_back(std::move(record));
    }
    return records;
  }

  template <class Row>
  static void each(SQLite::Statement& query, unsigned id, Row row) {
    query.bind(1, id);
    while (query.executeStep()) row(Columns(query));
    query.reset();
  }

  void add_side_rows(MaterialRecord& material) {
    each(tags_, material.id, [&](Columns at) { material.tags.push_back(at.id()); });
    each(thicknesses_, material.id, [&](Columns at) { material.thicknesses.push_back(at.real()); });
    each(values_, material.id, [&](Columns at) {
      const unsigned property = at.id();
      material.values.push_back({property, at.text()});
    });
  }

  SQLite::Database database_;
  SQLite::Statement materials_;
  SQLite::Statement tags_;
  SQLite::Statement thicknesses_;
  SQLite::Statement values_;
};

}  // namespace

std::unique_ptr<MaterialReader> sqlitecpp_reader(const std::string& path) {
  return std::make_unique<Reader>(path);
}

bool has_sqlitecpp() { return true; }

}  // namespace veldra_bench
