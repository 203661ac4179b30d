// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_TEXT_TABLE_HPP
#define VELDRA_KIT_EXCHANGE_TEXT_TABLE_HPP

#include "kit/exchange/table_rows.hpp"

namespace veldra::kit {

/// A table that is a text, which must outlive it.
class TextTable : public TableSheet {
 public:
  TextTable(const std::string& file, const std::string& text, const TableStyle& style)
      : file_(file), text_(text), style_(style) {}

  std::unique_ptr<TableRows> rows() const override;
  SourceProblem problem(const TablePlace& place, const std::string& object,
                        const std::string& sentence) const override;

 private:
  const std::string& file_;
  const std::string& text_;
  TableStyle style_;
};

}  // namespace veldra::kit

#endif
