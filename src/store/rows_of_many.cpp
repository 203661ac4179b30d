// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/rows_of_many.hpp"

#include <cassert>

namespace veldra {

namespace {

/// The statement with `condition` in the place of "=?" and of all that follows, in the order of the
/// column that it compares. (Putting the rows of each object in an order would have SQLite sort
/// them object by object, which takes a quarter of the time for tags.)
std::string with_condition(const std::string& statement, const std::string& condition) {
  const std::string select = "SELECT ";
  const std::string where = " WHERE ";
  const std::string equal = "=?";
  const auto where_at = statement.find(where);
  const auto equal_at = statement.find(equal, where_at);
  assert(statement.compare(0, select.size(), select) == 0 && equal_at != std::string::npos);

  const auto id_at = where_at + where.size();
  const std::string id = statement.substr(id_at, equal_at - id_at);
  const std::string columns_to_id = statement.substr(select.size(), equal_at - select.size());
  return select + id + ", " + columns_to_id + condition + " ORDER BY " + id;
}

}  // namespace

bool is_dense(const std::vector<unsigned>& ids) {
  constexpr std::size_t rows_for_each = 4;
  return (ids.back() - ids.front()) / rows_for_each < ids.size();
}

// A column of texts would be compared as texts with what is not said to be a number.
std::string for_range(const std::string& statement) {
  return with_condition(statement, " BETWEEN CAST(? AS INTEGER) AND CAST(? AS INTEGER)");
}

std::string for_list(const std::string& statement) {
  std::string list = " IN (?";
  for (std::size_t i = 1; i != most_at_once; ++i) list += ",?";
  return with_condition(statement, list + ")");
}

}  // namespace veldra
