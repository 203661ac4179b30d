// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/select.hpp>
#include <veldra/kit/text.hpp>

#include "kit/fields/field.hpp"
#include "kit/fields/units.hpp"
#include "kit/select/expression.hpp"
#include "kit/select/scanner.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

bool finds_by_name(Operator by) {
  return by == Operator::Equal || by == Operator::SameExactly || by == Operator::Unequal;
}

bool is_order(Operator by) {
  return by == Operator::Less || by == Operator::LessOrEqual || by == Operator::Greater ||
         by == Operator::GreaterOrEqual;
}

bool contains(Operator by) { return by == Operator::Contains || by == Operator::ContainsExactly; }

bool folds(Operator by) { return by != Operator::SameExactly && by != Operator::ContainsExactly; }

/// Which operators go with a field, for people.
const char* operators_for(Comparing comparing) {
  switch (comparing) {
    case Comparing::Texts:
      return "=, ==, !=, ~, ~~, <, <=, >, >= or 'is empty'";
    case Comparing::Numbers:
      return "=, ==, !=, <, <=, >, >= or 'is empty'";
    case Comparing::YesNo:
      return "=, ==, != or 'is empty'";
    case Comparing::Presence:
      break;
  }
  return "'is empty' or 'is not empty'";
}

bool goes_with(Operator by, Comparing comparing) {
  switch (comparing) {
    case Comparing::Texts:
      return true;
    case Comparing::Numbers:
      return !contains(by);
    case Comparing::YesNo:
      return finds_by_name(by);
    case Comparing::Presence:
      break;
  }
  return false;
}

/// The field with the kind of one entry of its list.
FieldDescription entry_of(FieldDescription field, Comparing comparing) {
  if (comparing == Comparing::Numbers) field.kind = Value::Kind::Number;
  if (comparing == Comparing::Texts) field.kind = Value::Kind::Text;
  return field;
}

class Parser {
 public:
  Parser(const std::string& text, const KnownFields& known) : scanner_(text), known_(known) {}

  Expression parse() {
    auto result = alternatives(0);
    if (!scanner_.at_end()) scanner_.expect(continuation("the end"));
    return result;
  }

 private:
  static constexpr int deepest = 100;

  Expression alternatives(int depth) {
    std::vector<Expression> parts{conjunction(depth)};
    while (scanner_.pass_word("or")) parts.push_back(conjunction(depth));
    return parts.size() == 1 ? parts.front() : Expression(Expression::Kind::Or, std::move(parts));
  }

  Expression conjunction(int depth) {
    std::vector<Expression> parts{condition(depth)};
    while (scanner_.pass_word("and")) parts.push_back(condition(depth));
    return parts.size() == 1 ? parts.front() : Expression(Expression::Kind::And, std::move(parts));
  }

  Expression condition(int depth) {
    const auto place = scanner_.place();
    if (depth > deepest) scanner_.refuse(place, "it is nested too deeply");
    if (scanner_.pass_word("not")) {
      return Expression(Expression::Kind::Not, {condition(depth + 1)});
    }
    if (!scanner_.pass('(')) return Expression(comparison());
    auto result = alternatives(depth + 1);
    if (!scanner_.pass(')')) scanner_.expect(continuation("')'"));
    return result;
  }

  /// What can stand behind a comparison.
  std::string continuation(const std::string& end) const {
    const std::string unit = units_.empty() ? "" : fmt::format("a unit ({}), ", units_);
    return fmt::format("{}'and', 'or' or {} (a value with blanks stands in quotes)", unit, end);
  }

  Comparison comparison() {
    units_.clear();
    Comparison result;
    result.field = known_.place_of(scanner_.field_name());
    const auto& field = *known_.fields[result.field];
    if (scanner_.pass_word("is")) {
      result.by = scanner_.pass_word("not") ? Operator::IsNotEmpty : Operator::IsEmpty;
      if (!scanner_.pass_word("empty")) scanner_.expect("'empty'");
      return result;
    }
    result.as = comparing_of(field);
    const auto place = scanner_.place();
    const auto by = scanner_.comparing_operator();
    if (!by) scanner_.expect(operators_for(result.as));
    if (!goes_with(*by, result.as)) {
      scanner_.refuse(
          place, fmt::format("'{}' is compared by {}", field.name(), operators_for(result.as)));
    }
    result.by = *by;
    read_value(field, result);
    return result;
  }

  void read_value(const FieldDescription& field, Comparison& comparison) {
    const auto place = scanner_.place();
    const auto entry = entry_of(field, comparison.as);
    const std::string text = scanner_.value(entry, known_.unit);
    if (trimmed(text).empty()) scanner_.refuse(place, "a value is empty; say 'is empty'");
    try {
      set_value(entry, text, comparison);
    } catch (const FieldError& error) {
      scanner_.refuse(place, error.what());
    }
    units_ = comparison.as == Comparing::Numbers ? unit_choices(entry.measure) : "";
    if (finds_by_name(comparison.by)) require_name(field, text, comparison, place);
  }

  void set_value(const FieldDescription& entry, const std::string& text,
                 Comparison& comparison) const {
    if (comparison.as == Comparing::Texts && contains(comparison.by))
      return set_text(text, comparison);
    const auto value = value_from_text(entry, text, known_.unit);
    if (comparison.as == Comparing::YesNo) {
      comparison.yes = value.as<bool>();
    } else if (comparison.as == Comparing::Numbers) {
      comparison.number = value.as<double>();
    } else {
      set_text(value.as<std::string>(), comparison);
      read_as_number(entry, text, comparison);
    }
  }

  static void set_text(const std::string& text, Comparison& comparison) {
    comparison.text = folds(comparison.by) ? folded(text) : text;
  }

  /// Custom values are texts, many of which are numbers.
  static void read_as_number(const FieldDescription& entry, const std::string& text,
                             Comparison& comparison) {
    const auto number = number_in(text);
    if (entry.origin != Origin::Custom || !is_order(comparison.by) || !number) return;
    comparison.as = Comparing::Numbers;
    comparison.number = *number;
  }

  /// What is not there would silently select nothing. Materials of layers are too many to ask for.
  void require_name(const FieldDescription& field, const std::string& text,
                    const Comparison& comparison, std::size_t place) const {
    if (!field.names || field.kind == Value::Kind::Layers) return;
    const auto names = field.names();
    const bool known = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
      return (folds(comparison.by) ? folded(name) : name) == comparison.text;
    });
    if (!known) scanner_.refuse(place, absence_of(field.refers_to, text, names));
  }

  Scanner scanner_;
  const KnownFields& known_;
  std::string units_;  ///< those of the last comparison
};

}  // namespace

FilterError::FilterError(std::size_t position, const std::string& sentence)
    : Error(fmt::format("in the filter, at character {}: {}", position, sentence)),
      position_(position),
      sentence_(sentence) {}

FilterError::~FilterError() = default;

Expression parse(const std::string& text, const KnownFields& known) {
  if (!is_utf8(text)) throw FilterError(1, "it is not UTF-8");
  return Parser(text, known).parse();
}

}  // namespace veldra::kit
