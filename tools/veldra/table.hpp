// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_TABLE_HPP
#define VELDRA_TOOL_TABLE_HPP

#include "process/spool.hpp"

#include <string>
#include <vector>

namespace veldra_tool {

enum class Align { Left, Right };

/// A table for a terminal, with columns as wide as what stands in them.
class Table {
 public:
  struct Column {
    std::string title;
    Align align = Align::Left;
    bool is_name = false;  ///< what tells rows apart, and is shortened when nothing else can be
  };

  explicit Table(std::vector<Column> columns);

  /// Adds a row of as many cells as there are columns. Control characters become escapes.
  void add(std::vector<std::string> cells);

  bool empty() const { return rows_.empty(); }

  /// The whole table, one line a row.
  std::string text() const { return text(0); }

  /// The same in no more than so many columns of a terminal, as far as shortening the widest of the
  /// texts allows, names last; 0 for as many as it takes.
  std::string text(std::size_t width) const;

 private:
  std::vector<std::size_t> natural_widths() const;
  void fit(std::vector<std::size_t>& widths, std::size_t width) const;
  std::size_t widest_text(const std::vector<std::size_t>& widths, bool names) const;

  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

/// A table of objects, whose kind, id and name come before another column.
Table object_table(const std::string& title);

/// Prints a table, or a sentence where there are no rows.
void print_table(Spool& output, const Table& table, const std::string& when_empty);

}  // namespace veldra_tool

#endif
