// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/select/expression.hpp"

#include <algorithm>

namespace veldra::kit {

Expression::Expression(Comparison comparison)
    : kind_(Kind::Comparison), comparison_{std::move(comparison)} {}

Expression::Expression(Kind kind, std::vector<Expression> parts)
    : kind_(kind), parts_(std::move(parts)) {}

bool Expression::holds(const std::function<Value(std::size_t)>& value_of) const {
  const auto part_holds = [&](const Expression& part) { return part.holds(value_of); };
  switch (kind_) {
    case Kind::And:
      return std::all_of(parts_.begin(), parts_.end(), part_holds);
    case Kind::Or:
      return std::any_of(parts_.begin(), parts_.end(), part_holds);
    case Kind::Not:
      return !part_holds(parts_.front());
    case Kind::Comparison:
      break;
  }
  return comparison_.front().holds(value_of(comparison_.front().field));
}

}  // namespace veldra::kit
