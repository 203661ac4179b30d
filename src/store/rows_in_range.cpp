// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/rows_in_range.hpp"

#include <cassert>

namespace veldra {

std::string over_range(const std::string& statement) {
  const std::string select = "SELECT ";
  const std::string where = " WHERE ";
  const std::string equal = "=?";
  const std::string order = " ORDER BY ";
  const auto condition = statement.find(where);
  const auto end = statement.find(equal, condition);
  assert(statement.compare(0, select.size(), select) == 0 && end != std::string::npos);

  const auto column_begin = condition + where.size();
  const std::string id = statement.substr(column_begin, end - column_begin);
  const std::string columns_and_tables = statement.substr(select.size(), end - select.size());
  const std::string rest = statement.substr(end + equal.size());
  const bool has_order = rest.compare(0, order.size(), order) == 0;
  return select + id + ", " + columns_and_tables + " BETWEEN ? AND ?" + order + id +
         (has_order ? ", " + rest.substr(order.size()) : rest);
}

}  // namespace veldra
