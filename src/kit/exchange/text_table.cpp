// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/text_table.hpp"

#include <fmt/format.h>

namespace veldra::kit {

namespace {

class TextRows : public TableRows {
 public:
  TextRows(const TextTable& table, const std::string& text, char separator)
      : table_(table), scanner_(text, separator) {}

  bool next(TableRow& row) override {
    if (!scanner_.next(row.cells)) {
      if (scanner_.is_open())
        fail_in(table_, {scanner_.line(), {}}, "the table ends within quotes");
      return false;
    }
    row.line = scanner_.line();
    if (scanner_.is_too_long()) fail_in(table_, {row.line, {}}, "a cell is longer than 1 MiB");
    if (!first_ && row.cells.size() > TableScanner::most_cells) {
      fail_in(table_, {row.line, {}},
              fmt::format("the row has more than {} cells", TableScanner::most_cells));
    }
    first_ = false;
    return true;
  }

 private:
  const TextTable& table_;
  TableScanner scanner_;
  bool first_ = true;
};

}  // namespace

std::unique_ptr<TableRows> TextTable::rows() const {
  return std::make_unique<TextRows>(*this, text_, style_.separator);
}

SourceProblem TextTable::problem(const TablePlace& place, const std::string& object,
                                 const std::string& sentence) const {
  return {file_, place.line, object, sentence};
}

}  // namespace veldra::kit
