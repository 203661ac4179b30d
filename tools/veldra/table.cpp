// SPDX-License-Identifier: GPL-2.0-or-later
#include "table.hpp"

#include "process/standard_streams.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace veldra_tool {

namespace {

using Cells = std::vector<std::string>;

constexpr std::string_view gap = "  ";

/// What is left of a text when it has to be short.
constexpr std::size_t least_width = 8;

std::string shortened(const std::string& cell, std::size_t width) {
  if (display_width(cell) <= width) return cell;
  return leading_columns(cell, width - 1) + "…";
}

std::string line_of(const Cells& cells, const std::vector<std::size_t>& widths,
                    const std::vector<Table::Column>& columns) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line += gap;
    const std::string cell = shortened(cells[i], widths[i]);
    const std::string padding(widths[i] - display_width(cell), ' ');
    line += columns[i].align == Align::Right ? padding + cell : cell + padding;
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

std::vector<std::size_t> Table::natural_widths() const {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::size_t width = display_width(columns_[i].title);
    for (const Cells& row : rows_) width = std::max(width, display_width(row[i]));
    widths.push_back(width);
  }
  return widths;
}

/// The widest column that can be narrower, of names or of other texts; as many as there are columns
/// if none can.
std::size_t Table::widest_text(const std::vector<std::size_t>& widths, bool names) const {
  std::size_t widest = widths.size();
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const auto& column = columns_[i];
    if (column.align != Align::Left || column.is_name != names) continue;
    if (widths[i] <= std::max(least_width, display_width(column.title))) continue;
    if (widest == widths.size() || widths[i] > widths[widest]) widest = i;
  }
  return widest;
}

void Table::fit(std::vector<std::size_t>& widths, std::size_t width) const {
  const auto total = [&] {
    return std::accumulate(widths.begin(), widths.end(), gap.size() * (widths.size() - 1));
  };
  for (const bool names : {false, true}) {
    while (total() > width) {
      const auto widest = widest_text(widths, names);
      if (widest == widths.size()) break;
      --widths[widest];
    }
  }
}

std::string Table::text(std::size_t width) const {
  auto widths = natural_widths();
  if (width > 0) fit(widths, width);
  Cells titles;
  Cells rules;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    titles.push_back(columns_[i].title);
    rules.emplace_back();
    for (std::size_t column = 0; column < widths[i]; ++column) rules.back() += "─";
  }
  std::string text = line_of(titles, widths, columns_) + line_of(rules, widths, columns_);
  for (const Cells& row : rows_) text += line_of(row, widths, columns_);
  return text;
}

Table object_table(const std::string& title) {
  return Table({{"kind"}, {"id", Align::Right}, {"name", Align::Left, true}, {title}});
}

void print_table(Spool& output, const Table& table, const std::string& when_empty) {
  output.write(table.empty() ? when_empty + "\n" : table.text(terminal_width()));
}

}  // namespace veldra_tool
