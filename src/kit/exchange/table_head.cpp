// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/problem.hpp"
#include "kit/exchange/table_columns.hpp"
#include "kit/exchange/table_reader.hpp"
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

TableKind kind_named(const std::string& name, const TableSource& table, unsigned line) {
  if (name == singular_of(ObjectType::Material)) return TableKind::Materials;
  if (name == singular_of(ObjectType::Composition)) return TableKind::Compositions;
  if (name == layer_kind) return TableKind::Layers;
  fail_at(*table.file, line,
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

/// What the headings tell where no row says it.
TableKind kind_by_headings(const TableSource& table) {
  if (is_heading(table.headings, "composition") && is_heading(table.headings, "position")) {
    return TableKind::Layers;
  }
  const bool materials = has_own_heading<Material>(table.headings, keys_of<Composition>());
  const bool compositions = has_own_heading<Composition>(table.headings, keys_of<Material>());
  if (materials != compositions) {
    return materials ? TableKind::Materials : TableKind::Compositions;
  }
  if (!materials && has_unknown_heading(table.headings)) return TableKind::Materials;
  fail_at(*table.file, 1,
          "the headings do not tell whether the rows are materials, compositions or layers of "
          "compositions; a column 'kind' with material, composition or layer in each row does");
}

void find_kind(TableSource& table, TableScanner& scanner) {
  const auto column = std::find(table.headings.begin(), table.headings.end(), kind_heading);
  Cells row;
  if (column == table.headings.end() || !scanner.next(row)) {
    table.kind = kind_by_headings(table);
    return;
  }
  const auto place = static_cast<std::size_t>(column - table.headings.begin());
  const auto kind = place < row.size() ? trimmed(row[place]) : std::string();
  table.kind = kind_named(kind, table, scanner.line());
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
    fail_at(*table.file, 1,
            fmt::format("the table has more than {} columns", TableScanner::most_cells));
  }
  std::set<std::string> seen;
  for (auto& heading : table.headings) {
    heading = trimmed(text_of_cell(heading, {table.style.separator, '.'}));
    if (!heading.empty() && !seen.insert(heading).second) {
      fail_at(*table.file, 1, fmt::format("the column {} is there twice", quoted(heading)));
    }
  }
}

}  // namespace

bool TableContent::has_objects() const {
  TableScanner scanner(content_.text, separator_in(content_.text));
  Cells cells;
  return scanner.next(cells) && scanner.next(cells);
}

void TableContent::add_to(SourceSet&, SourceReport& report) const {
  fail_at(report.file, 0,
          "this is a table, which is read into a library by itself and not with other sources");
}

void read_head(TableSource& table, const TableRules& rules) {
  const auto& text = *table.text;
  table.style.separator = rules.separator != '\0' ? rules.separator : separator_in(text);
  table.style.decimal =
      rules.decimal != '\0' ? rules.decimal : decimal_in(text, table.style.separator);
  TableScanner scanner(text, table.style.separator);
  if (!scanner.next(table.headings)) fail_at(*table.file, 0, "this is empty");
  require_headings(table);
  find_kind(table, scanner);
}

FormatModule table_module() {
  return {"CSV",
          {"csv", "tsv"},
          [](const FileContent& content) {
            return !content.document &&
                   (looks_like_table(content.text) || is_named_table(content.file));
          },
          [](FileContent content) -> std::shared_ptr<const SourceContent> {
            return std::make_shared<TableContent>(std::move(content));
          },
          write_table};
}

}  // namespace veldra::kit
