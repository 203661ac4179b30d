// SPDX-License-Identifier: GPL-2.0-or-later
#include "csv.hpp"

#include "kinds.hpp"
#include "lookup.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <map>
#include <set>
#include <string_view>
#include <vector>

namespace veldra_tool {

namespace {

constexpr const char* line_end = "\r\n";
constexpr const char* between = "; ";

using Row = std::map<std::string, std::string>;

/// Spreadsheets take a text that begins like this for a formula; an apostrophe before it says that
/// it is none, and so one that is part of a text needs another.
std::string guarded(const std::string& text) {
  const bool open =
      text.empty() || std::string_view("=+-@\t\r'").find(text[0]) == std::string::npos;
  return open ? text : "'" + text;
}

bool is_numeric(const std::string& column) {
  return column == "position" || column == "thickness" || column == "function";
}

/// The table, whose columns are those that were asked for first.
class CsvTable {
 public:
  CsvTable(std::vector<std::string> columns, CsvFor reader)
      : columns_(std::move(columns)), reader_(reader) {}

  void add_column(const std::string& column) {
    if (std::find(columns_.begin(), columns_.end(), column) == columns_.end()) {
      columns_.push_back(column);
    }
  }
  void add(Row row) { rows_.push_back(std::move(row)); }

  std::string text() const {
    std::string text = line_of([](const std::string& column) { return column; });
    for (const Row& row : rows_) {
      text += line_of([&](const std::string& column) {
        const auto cell = row.find(column);
        if (cell == row.end()) return std::string();
        return is_numeric(column) ? cell->second : guarded(cell->second);
      });
    }
    return text;
  }

 private:
  template <class CellOf>
  std::string line_of(CellOf cell_of) const {
    std::string line;
    for (const auto& column : columns_) {
      if (!line.empty()) line += ",";
      const std::string cell = cell_of(column);
      line += escaped(reader_ == CsvFor::People ? printable(cell) : cell);
    }
    return line + line_end;
  }

  static std::string escaped(const std::string& cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
    std::string result = "\"";
    for (const char character : cell) {
      if (character == '"') result += '"';
      result += character;
    }
    return result + "\"";
  }

  std::vector<std::string> columns_;
  std::vector<Row> rows_;
  CsvFor reader_;
};

/// A heading for each property, which no other column has: with the kind of object that the
/// property is for where its name alone would not do.
class PropertyHeadings {
 public:
  explicit PropertyHeadings(const veldra::Library& library)
      : properties_(all_objects<veldra::CustomProperty>(library)) {
    std::map<veldra::String, unsigned> sharers;
    for (const auto& property : properties_) ++sharers[property->name()];
    for (const auto& property : properties_) {
      if (sharers[property->name()] > 1) qualify(*property);
    }
    while (qualify_next()) {
    }
  }

  std::string operator()(const veldra::CustomProperty& property) const {
    return ids_.count(property.id()) > 0 ? qualified(property) : plain(property);
  }

  std::vector<std::string> all() const {
    std::vector<std::string> headings;
    for (const auto& property : properties_) headings.push_back((*this)(*property));
    return headings;
  }

 private:
  static std::string plain(const veldra::CustomProperty& property) {
    return "property:" + property.name().utf8();
  }

  /// No word for a kind has a colon, so that no two of these are the same.
  static std::string qualified(const veldra::CustomProperty& property) {
    static const auto& owner = kit::built_in_fields<veldra::CustomProperty>().at("object_type");
    const bool for_all = property.object_type() == veldra::ObjectType{};
    const std::string word = for_all ? "all" : kit::value_text(owner.get(property));
    return fmt::format("property:{}:{}", word, property.name().utf8());
  }

  void qualify(const veldra::CustomProperty& property) {
    ids_.insert(property.id());
    taken_.insert(qualified(property));
  }

  /// A name may itself look like a kind with a name.
  bool qualify_next() {
    for (const auto& property : properties_) {
      if (ids_.count(property->id()) > 0 || taken_.count(plain(*property)) == 0) continue;
      qualify(*property);
      return true;
    }
    return false;
  }

  std::vector<std::shared_ptr<veldra::CustomProperty>> properties_;
  std::set<unsigned> ids_;       ///< of properties whose headings have kinds
  std::set<std::string> taken_;  ///< those headings
};

template <class Owner>
Row common_cells(const Owner& owner, const char* kind, const PropertyHeadings& heading) {
  Row row{{"kind", kind},
          {"name", owner.name().utf8()},
          {"description", owner.description().utf8()},
          {"comments", owner.comments().utf8()}};
  for (const auto& tag : owner.tags()) {
    auto& cell = row["tags"];
    cell += (cell.empty() ? "" : between) + tag->name().utf8();
  }
  for (const auto& [property, value] : owner.custom_values()) {
    row[heading(*property)] = value.utf8();
  }
  return row;
}

const std::vector<const kit::Field<veldra::Material>*>& text_fields() {
  static const auto fields = kit::plain_material_fields(kit::Value::Kind::Text);
  return fields;
}

Row cells_of(const veldra::Material& material, const PropertyHeadings& heading) {
  Row row = common_cells(material, "material", heading);
  row["type"] = material.type() ? material.type()->name().utf8() : "";
  row["code"] = material.code().utf8();
  for (const auto* field : text_fields()) row[field->key] = kit::value_text(field->get(material));
  for (const double thickness : material.thicknesses()) {
    auto& cell = row["thickness"];
    cell += (cell.empty() ? "" : between) + exact_number(thickness);
  }
  if (material.cut_layer()) row["drawing layer"] = material.cut_layer()->name().utf8();
  row["function"] = exact_number(static_cast<int>(material.function()));
  return row;
}

Row cells_of(const veldra::Composition& composition, const PropertyHeadings& heading) {
  Row row = common_cells(composition, "composition", heading);
  row["type"] = name_of(composition.type());
  if (composition.entity_layer()) {
    row["drawing layer"] = composition.entity_layer()->name().utf8();
  }
  return row;
}

Row layer_cells(const veldra::Composition& composition, std::size_t index) {
  const auto& layer = composition.layers()[index];
  return {{"kind", "layer"},
          {"name", composition.name().utf8()},
          {"position", std::to_string(index + 1)},
          {"material", layer.material()->name().utf8()},
          {"thickness", exact_number(layer.thickness())},
          {"function", std::to_string(static_cast<int>(layer.function()))}};
}

}  // namespace

std::string csv_of(const veldra::Library& library, CsvFor reader, Progress& progress) {
  CsvTable table({"kind", "name", "position", "material", "thickness", "function", "type", "code",
                  "tags", "drawing layer"},
                 reader);
  for (const auto* field : text_fields()) table.add_column(field->key);
  const PropertyHeadings heading(library);
  for (const auto& column : heading.all()) table.add_column(column);
  for (const auto& material : all_objects<veldra::Material>(library)) {
    table.add(cells_of(*material, heading));
    progress.step();
  }
  for (const auto& composition : all_objects<veldra::Composition>(library)) {
    table.add(cells_of(*composition, heading));
    for (std::size_t i = 0; i < composition->layers().size(); ++i) {
      table.add(layer_cells(*composition, i));
    }
    progress.step();
  }
  return table.text();
}

}  // namespace veldra_tool
