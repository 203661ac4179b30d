// SPDX-License-Identifier: GPL-2.0-or-later
#include "table.hpp"

#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace veldra_tool {

namespace {

using Cells = std::vector<std::string>;

std::string line_of(const Cells& cells, const std::vector<std::size_t>& widths,
                    const std::vector<Table::Column>& columns) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line += "  ";
    const std::string padding(widths[i] - display_width(cells[i]), ' ');
    line += columns[i].align == Align::Right ? padding + cells[i] : cells[i] + padding;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line + "\n";
}

}  // namespace

Table::Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

void Table::add(std::vector<std::string> cells) {
  for (std::string& cell : cells) cell = printable(cell);
  cells.resize(columns_.size());
  rows_.push_back(std::move(cells));
}

std::string Table::text() const {
  Cells titles;
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    titles.push_back(columns_[i].title);
    std::size_t width = display_width(columns_[i].title);
    for (const Cells& row : rows_) width = std::max(width, display_width(row[i]));
    widths.push_back(width);
  }
  Cells rules;
  for (const std::size_t width : widths) {
    std::string rule;
    for (std::size_t i = 0; i < width; ++i) rule += "─";
    rules.push_back(rule);
  }
  std::string text = line_of(titles, widths, columns_) + line_of(rules, widths, columns_);
  for (const Cells& row : rows_) text += line_of(row, widths, columns_);
  return text;
}

Table object_table(const std::string& title) {
  return Table({{"kind"}, {"id", Align::Right}, {"name"}, {title}});
}

void print_table(Spool& output, const Table& table, const std::string& when_empty) {
  output.write(table.empty() ? when_empty + "\n" : table.text());
}

}  // namespace veldra_tool
