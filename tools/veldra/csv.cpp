#include "csv.hpp"

#include "fields.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "text.hpp"

#include <map>
#include <vector>

namespace veldra_tool {

namespace {

constexpr const char* line_end = "\r\n";
constexpr const char* between = "; ";

using Row = std::map<std::string, std::string>;

/// The table, whose columns are those that were asked for first.
class CsvTable {
 public:
  explicit CsvTable(std::vector<std::string> columns) : columns_(std::move(columns)) {}

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
        return cell != row.end() ? cell->second : "";
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
      line += escaped(cell_of(column));
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
};

template <class Owner>
Row common_cells(const Owner& owner, const char* kind) {
  Row row{{"kind", kind},
          {"name", owner.name().utf8()},
          {"description", owner.description().utf8()},
          {"comments", owner.comments().utf8()}};
  for (const auto& tag : owner.tags()) {
    auto& cell = row["tags"];
    cell += (cell.empty() ? "" : between) + tag->name().utf8();
  }
  for (const auto& [property, value] : owner.custom_values()) {
    row[property->name().utf8()] = value.utf8();
  }
  return row;
}

Row cells_of(const veldra::Material& material) {
  Row row = common_cells(material, "material");
  row["type"] = material.type() ? material.type()->name().utf8() : "";
  row["code"] = material.code().utf8();
  for (const auto& text : material_texts) row[text.key] = (material.*text.get)().utf8();
  for (const double thickness : material.thicknesses()) {
    auto& cell = row["thickness"];
    cell += (cell.empty() ? "" : between) + exact_number(thickness);
  }
  if (material.cut_layer()) row["drawing layer"] = material.cut_layer()->name().utf8();
  row["function"] = exact_number(static_cast<int>(material.function()));
  return row;
}

Row cells_of(const veldra::Composition& composition) {
  Row row = common_cells(composition, "composition");
  row["type"] = name_of(composition.type());
  if (composition.entity_layer()) {
    row["drawing layer"] = composition.entity_layer()->name().utf8();
  }
  return row;
}

Row cells_of(const veldra::Composition& composition, std::size_t index) {
  const auto& layer = composition.layers()[index];
  return {{"kind", "layer"},
          {"name", composition.name().utf8()},
          {"position", std::to_string(index + 1)},
          {"material", layer.material()->name().utf8()},
          {"thickness", exact_number(layer.thickness())},
          {"function", std::to_string(static_cast<int>(layer.function()))}};
}

}  // namespace

std::string csv_of(const veldra::Library& library, Progress& progress) {
  CsvTable table({"kind", "name", "position", "material", "thickness", "function", "type", "code",
                  "tags", "drawing layer"});
  for (const auto& text : material_texts) table.add_column(text.key);
  for (const auto& property : all_objects<veldra::CustomProperty>(library)) {
    table.add_column(property->name().utf8());
  }
  for (const auto& material : all_objects<veldra::Material>(library)) {
    table.add(cells_of(*material));
    progress.step();
  }
  for (const auto& composition : all_objects<veldra::Composition>(library)) {
    table.add(cells_of(*composition));
    for (std::size_t i = 0; i < composition->layers().size(); ++i) {
      table.add(cells_of(*composition, i));
    }
    progress.step();
  }
  return table.text();
}

}  // namespace veldra_tool
