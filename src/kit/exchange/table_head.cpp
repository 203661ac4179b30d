// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/problem.hpp"
#include "kit/exchange/table_columns.hpp"
#include "kit/exchange/table_reader.hpp"
#include "kit/exchange/text_table.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace veldra::kit {

namespace {

bool is_named_table(const std::string& file) {
  const auto name = lower_case(file);
  const auto ends_with = [&](const std::string& ending) {
    return name.size() > ending.size() &&
           name.compare(name.size() - ending.size(), ending.size(), ending) == 0;
  };
  return ends_with(".csv") || ends_with(".tsv");
}

bool is_heading(const Cells& headings, const std::string& wanted) {
  return std::any_of(headings.begin(), headings.end(), [&](const std::string& heading) {
    return heading == wanted || heading.compare(0, wanted.size() + 2, wanted + " [") == 0;
  });
}

TableKind kind_named(const std::string& name, const TableSource& table, const TablePlace& place) {
  if (name == singular_of(ObjectType::Material)) return TableKind::Materials;
  if (name == singular_of(ObjectType::Composition)) return TableKind::Compositions;
  if (name == layer_kind) return TableKind::Layers;
  fail_in(*table.sheet, place,
          fmt::format("there is no table of the kind {}; there are material, composition, layer",
                      quoted(name)));
}

template <class T>
bool has_own_heading(const Cells& headings, const std::set<std::string>& others) {
  const Fields<T>& fields = built_in_fields<T>();
  return std::any_of(fields.begin(), fields.end(), [&](const auto& field) {
    const bool stored = field.origin == Origin::Stored || field.origin == Origin::Quantity;
    return stored && others.count(field.key) == 0 && is_heading(headings, field.key);
  });
}

template <class T>
std::set<std::string> keys_of() {
  std::set<std::string> keys;
  for (const auto& field : built_in_fields<T>()) keys.insert(field.key);
  return keys;
}

/// One that no table has says nothing, and is told as such.
bool has_unknown_heading(const Cells& headings) {
  const auto keys = keys_of<Material>();
  const auto more = keys_of<Composition>();
  return std::any_of(headings.begin(), headings.end(), [&](const std::string& heading) {
    const auto name = heading.substr(0, heading.find(" ["));
    return keys.count(name) == 0 && more.count(name) == 0 &&
           name.compare(0, std::string(property_prefix).size(), property_prefix) != 0;
  });
}

void find_kind(TableSource& table, TableRows& rows) {
  const auto column = std::find(table.headings.begin(), table.headings.end(), kind_heading);
  TableRow row;
  if (column != table.headings.end() && rows.next(row)) {
    const auto place = static_cast<std::size_t>(column - table.headings.begin());
    const auto kind = place < row.cells.size() ? trimmed(row.cells[place]) : std::string();
    table.kind = kind_named(kind, table, {row.line, place});
    return;
  }
  auto kind = kind_by_headings(table.headings);
  const auto title = table.sheet->title();
  if (title == "materials") kind = TableKind::Materials;
  if (title == "compositions") kind = TableKind::Compositions;
  if (!kind) {
    fail_in(*table.sheet, {table.heading_line, {}},
            "the headings do not tell whether the rows are materials, compositions or layers of "
            "compositions; a column 'kind' with material, composition or layer in each row does");
  }
  table.kind = *kind;
}

/// A cell of digits with a comma among them shows that it is the sign between them. Where cells
/// have commas between them, numbers have points.
char decimal_in(const std::string& text, char separator) {
  if (separator == ',') return '.';
  TableScanner scanner(text, separator);
  Cells cells;
  std::size_t commas = 0;
  std::size_t points = 0;
  const TableStyle with_commas{separator, ','};
  for (std::size_t rows = 0; rows < 1000 && scanner.next(cells); ++rows) {
    for (const auto& cell : cells) {
      if (number_in(cell) && cell.find('.') != std::string::npos) ++points;
      if (!number_in(cell) && number_in(text_of_cell(cell, with_commas))) ++commas;
    }
  }
  return commas > points ? ',' : '.';
}

void require_headings(TableSource& table) {
  if (table.headings.size() > TableScanner::most_cells) {
    fail_in(*table.sheet, {table.heading_line, {}},
            fmt::format("the table has more than {} columns", TableScanner::most_cells));
  }
  std::set<std::string> seen;
  for (std::size_t i = 0; i < table.headings.size(); ++i) {
    auto& heading = table.headings[i];
    heading = trimmed(text_of_cell(heading, {table.style.separator, '.'}));
    if (!heading.empty() && !seen.insert(heading).second) {
      fail_in(*table.sheet, {table.heading_line, i},
              fmt::format("the column {} is there twice", quoted(heading)));
    }
  }
}

/// The text of a table that was recognised.
class TextContent : public TableContent {
 public:
  explicit TextContent(FileContent content) : content_(std::move(content)) {}

  bool has_objects() const override {
    TableScanner scanner(content_.text, separator_in(content_.text));
    Cells cells;
    return scanner.next(cells) && scanner.next(cells);
  }

  void add_tables(std::size_t index, const TableRules& rules, SourceReport& report,
                  std::vector<TableSource>& tables) const override {
    const auto& text = content_.text;
    TableStyle style;
    style.separator =
        rules.separator != '\0' ? rules.separator : separator_in(text, rules.usual_separator);
    style.decimal = rules.decimal != '\0' ? rules.decimal : decimal_in(text, style.separator);
    auto sheet = std::make_shared<TextTable>(content_.file, text, style);
    tables.push_back({index, std::move(sheet), style, &report, TableKind::Materials, 1, {}});
    read_head(tables.back());
  }

 private:
  FileContent content_;
};

}  // namespace

void TableContent::add_to(SourceSet&, SourceReport& report) const {
  fail_at(report.file, 0,
          "this is a table, which is read into a library by itself and not with other sources");
}

std::optional<TableKind> kind_by_headings(const Cells& headings) {
  if (is_heading(headings, "composition") && is_heading(headings, "position")) {
    return TableKind::Layers;
  }
  const bool materials = has_own_heading<Material>(headings, keys_of<Composition>());
  const bool compositions = has_own_heading<Composition>(headings, keys_of<Material>());
  if (materials != compositions) {
    return materials ? TableKind::Materials : TableKind::Compositions;
  }
  if (!materials && has_unknown_heading(headings)) return TableKind::Materials;
  return std::nullopt;
}

void read_head(TableSource& table) {
  const auto rows = table.sheet->rows();
  TableRow row;
  if (!rows->next(row)) fail_in(*table.sheet, {}, "this is empty");
  table.headings = std::move(row.cells);
  table.heading_line = row.line;
  require_headings(table);
  find_kind(table, *rows);
}

FormatModule table_module() {
  return {"CSV",
          {"csv", "tsv"},
          [](const FileContent& content) {
            return !content.document &&
                   (looks_like_table(content.text) || is_named_table(content.file));
          },
          [](FileContent content) -> std::shared_ptr<SourceContent> {
            return std::make_shared<TextContent>(std::move(content));
          },
          write_table,
          FormatModule::PropertiesOf::Library};
}

}  // namespace veldra::kit
