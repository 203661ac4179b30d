// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_TABLE_ROWS_HPP
#define VELDRA_KIT_EXCHANGE_TABLE_ROWS_HPP

#include "kit/exchange/table_text.hpp"

#include <veldra/kit/exchange.hpp>

#include <memory>
#include <optional>
#include <string>

namespace veldra::kit {

/// A row of a table, and where it begins. Its cells are as in a text with points in numbers, unless
/// the table says otherwise.
struct TableRow {
  unsigned line = 0;
  Cells cells;
  std::string fault;             ///< why a cell cannot be read; empty for most
  std::size_t fault_column = 0;  ///< where that is
};

/// Gives the rows of a table one after the other.
class TableRows {
 public:
  TableRows() = default;
  TableRows(const TableRows&) = delete;
  TableRows& operator=(const TableRows&) = delete;
  virtual ~TableRows() = default;

  /// The next row that is not blank; false at the end. Throws `SourceError`.
  virtual bool next(TableRow& row) = 0;
};

/// Where something stands in a table.
struct TablePlace {
  unsigned line = 0;
  std::optional<std::size_t> column;  ///< counted from 0; nothing for the row as a whole
};

/// A table, whatever it is written in. The first of its rows has the headings.
class TableSheet {
 public:
  TableSheet() = default;
  TableSheet(const TableSheet&) = delete;
  TableSheet& operator=(const TableSheet&) = delete;
  virtual ~TableSheet() = default;

  virtual std::unique_ptr<TableRows> rows() const = 0;

  /// A problem that names the place.
  virtual SourceProblem problem(const TablePlace& place, const std::string& object,
                                const std::string& sentence) const = 0;

  /// What people call it; empty for what has no name of its own.
  virtual std::string title() const { return {}; }

  /// Whether programs that edit it keep 15 digits of numbers, and columns that nobody sees.
  virtual bool is_workbook() const { return false; }
};

/// Fails because of what stands at a place.
[[noreturn]] inline void fail_in(const TableSheet& sheet, const TablePlace& place,
                                 const std::string& sentence) {
  throw SourceError(sheet.problem(place, "", sentence));
}

}  // namespace veldra::kit

#endif
