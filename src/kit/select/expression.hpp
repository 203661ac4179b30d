// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_SELECT_EXPRESSION_HPP
#define VELDRA_KIT_SELECT_EXPRESSION_HPP

#include "kit/select/comparison.hpp"

#include <functional>
#include <string>
#include <vector>

namespace veldra::kit {

/// What a filter says, as a tree.
class Expression {
 public:
  enum class Kind { And, Or, Not, Comparison };

  explicit Expression(Comparison comparison);
  Expression(Kind kind, std::vector<Expression> parts);

  /// Whether it holds for an object, whose fields `value_of` reads by their places.
  bool holds(const std::function<Value(std::size_t)>& value_of) const;

 private:
  Kind kind_;
  std::vector<Expression> parts_;
  std::vector<Comparison> comparison_;  ///< one, or none
};

/// What the parser has to know of fields.
struct KnownFields {
  std::vector<const FieldDescription*> fields;
  std::function<std::size_t(const std::string&)> place_of;  ///< throws `UnknownField`
  Unit unit;
};

/// Reads a filter.
///
/// Throws: as `Filter`.
Expression parse(const std::string& text, const KnownFields& known);

}  // namespace veldra::kit

#endif
