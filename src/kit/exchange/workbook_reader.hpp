// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_WORKBOOK_READER_HPP
#define VELDRA_KIT_EXCHANGE_WORKBOOK_READER_HPP

#include "kit/exchange/table_rows.hpp"

#include <memory>
#include <string>
#include <vector>

namespace veldra::kit {

/// A cell that is not empty. Texts that many cells share are there once.
struct SheetCell {
  std::size_t column;
  std::shared_ptr<const std::string> text;  ///< as in a text with points in numbers
};

struct SheetRow {
  unsigned line = 0;
  std::vector<SheetCell> cells;
  std::string fault;  ///< why a cell cannot be read
  std::size_t fault_column = 0;
};

/// A sheet of a workbook.
class WorkbookSheet : public TableSheet {
 public:
  WorkbookSheet(const std::string& file, const std::string& name) : file_(file), name_(name) {}

  std::unique_ptr<TableRows> rows() const override;
  SourceProblem problem(const TablePlace& place, const std::string& object,
                        const std::string& sentence) const override;
  std::string title() const override { return name_; }
  bool is_workbook() const override { return true; }

  std::vector<SheetRow> content;

 private:
  std::string file_;
  std::string name_;
};

/// What a workbook holds.
struct WorkbookSheets {
  std::vector<std::shared_ptr<WorkbookSheet>> tables;
  std::vector<SourceProblem> left_out;  ///< sheets that are none of this program's
};

/// Reads the sheets of a workbook. Formulas are never computed: their stored values count. Throws
/// `SourceError`.
WorkbookSheets read_workbook(const std::string& bytes, const std::string& file);

}  // namespace veldra::kit

#endif
