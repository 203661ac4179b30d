// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_SELECT_COMPARISON_HPP
#define VELDRA_KIT_SELECT_COMPARISON_HPP

#include <veldra/kit/fields.hpp>

#include <optional>
#include <string>

namespace veldra::kit {

enum class Operator {
  Equal,
  SameExactly,
  Unequal,
  Contains,
  ContainsExactly,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  IsEmpty,
  IsNotEmpty
};

/// How the values of a field are compared.
enum class Comparing { Texts, Numbers, YesNo, Presence };

Comparing comparing_of(const FieldDescription& field);

/// One comparison of a filter.
struct Comparison {
  std::size_t field = 0;  ///< its place
  Operator by = Operator::IsEmpty;
  Comparing as = Comparing::Presence;
  std::string text;   ///< to compare with, folded where the operator folds
  double number = 0;  ///< the same of numbers
  bool yes = false;   ///< the same of yes and no

  bool holds(const Value& value) const;
};

/// The number of a value that is one.
std::optional<double> number_of(const Value& value);

}  // namespace veldra::kit

#endif
