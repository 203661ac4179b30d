// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/text.hpp>

#include "kit/fields/field.hpp"
#include "kit/fields/parts.hpp"
#include "kit/fields/units.hpp"

#include <fmt/format.h>

#include <charconv>
#include <limits>
#include <optional>

namespace veldra::kit {

namespace {

/// Reads what was typed for one field.
class Reader {
 public:
  Reader(const FieldDescription& field, const std::string& text, Unit library)
      : field_(field), text_(text), library_(library) {}

  Value value() const {
    switch (field_.kind) {
      case Value::Kind::Nothing:
        break;
      case Value::Kind::YesNo:
        return yes_no(trimmed(text_));
      case Value::Kind::WholeNumber:
        return whole_number(trimmed(text_));
      case Value::Kind::Number:
        return measured(trimmed(text_));
      case Value::Kind::Text:
        return choice(text_);
      case Value::Kind::Texts:
        return texts();
      case Value::Kind::Numbers:
        return numbers();
      case Value::Kind::Color:
        return color();
      case Value::Kind::Pattern:
        return pattern();
      case Value::Kind::Point:
        return point();
      case Value::Kind::Layers:
        return layers();
    }
    refuse();
  }

 private:
  [[noreturn]] void refuse(const std::string& allowed) const {
    throw FieldError(field_.name(), text_, allowed);
  }
  [[noreturn]] void refuse() const {
    std::string allowed = "it must be ";
    if (is_number()) {
      for (const auto& [word, number] : field_.words) allowed += word + ", ";
      if (!field_.words.empty()) allowed += "or ";
    }
    allowed += name_of(field_.kind);
    const std::string unit = unit_text(field_.measure, library_);
    if (!unit.empty()) allowed += fmt::format(", in {} or with a unit", unit);
    refuse(allowed);
  }

  bool yes_no(const std::string& text) const {
    const std::string word = lower_case(text);
    if (word == "yes" || word == "true") return true;
    if (word == "no" || word == "false") return false;
    refuse();
  }

  bool is_number() const {
    return field_.kind == Value::Kind::WholeNumber || field_.kind == Value::Kind::Number;
  }

  /// The number for which a word stands.
  std::optional<int> named_number(const std::string& text) const {
    for (const auto& [word, number] : field_.words) {
      if (folded(word) == folded(text)) return number;
    }
    return std::nullopt;
  }

  long long whole_number(const std::string& text) const {
    if (const auto named = named_number(text)) return *named;
    long long number = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    using Limits = std::numeric_limits<int>;
    if (result.ec != std::errc() || result.ptr != end) refuse();
    if (number < Limits::min() || number > std::numeric_limits<unsigned>::max()) {
      refuse("the number is out of range");
    }
    return counted(number);
  }

  /// People count positions from 1.
  template <class Number>
  Number counted(Number number) const {
    if (field_.is_position && number < 1) refuse(positions_allowed);
    return field_.is_position ? number - 1 : number;
  }

  /// As such numbers are written, which `number_in` does not read.
  void require_finite(const std::string& text) const {
    const std::string word = lower_case(text.substr(text.find_first_not_of("+-") == 1 ? 1 : 0));
    if (word == "inf" || word == "nan") refuse("a number must be finite");
  }

  double number(const std::string& text) const {
    require_finite(text);
    const auto result = number_in(text);
    if (!result) refuse();
    return *result;
  }

  /// A number with or without a unit behind it.
  double measured(const std::string& text) const {
    const auto named = is_number() ? named_number(text) : std::nullopt;
    if (named) return *named;
    require_finite(text);
    const auto digits = std::min(text.find_first_not_of("0123456789.+-eE"), text.size());
    const std::string unit = trimmed(text.substr(digits));
    if (unit.size() > 1 && unit[0] == ',' && is_digit(unit[1])) refuse("numbers have a point");
    double result = number(text.substr(0, digits));
    if (!unit.empty()) {
      const auto factor = unit_factor(unit, field_.measure, library_);
      if (!factor) refuse_unit(unit);
      result *= *factor;
    }
    if (field_.measure != Measure::None && result < 0) refuse("it must be 0 or greater");
    return counted(result);
  }

  static bool is_digit(char character) { return character >= '0' && character <= '9'; }

  [[noreturn]] void refuse_unit(const std::string& unit) const {
    if (field_.measure == Measure::None) refuse("it has no unit");
    refuse(fmt::format("'{}' is none of its units {}", unit, unit_choices(field_.measure)));
  }

  std::string choice(const std::string& text) const {
    if (field_.choices.empty()) return text;
    for (const std::string& each : field_.choices) {
      if (folded(each) == folded(trimmed(text))) return each;
    }
    refuse(fmt::format("it must be one of {}", list_of(field_.choices)));
  }

  std::string plain(const std::string& part) const {
    const auto text = unquoted(part);
    if (!text) refuse("a quote is open, or stands beside a text");
    return *text;
  }

  Value::Texts texts() const {
    Value::Texts result;
    for (const auto& part : split(text_, list_separator)) {
      result.push_back(plain(part));
      if (result.back().empty()) refuse("a text in the list is empty");
    }
    return result;
  }

  Value::Numbers numbers() const {
    Value::Numbers result;
    for (const auto& part : split(text_, list_separator)) result.push_back(measured(part));
    return result;
  }

  Color color() const {
    const std::string text = trimmed(text_);
    if (text.front() == '#') return web_color(text.substr(1));
    const auto parts = split(text, list_separator);
    if (parts.size() != 4) refuse();
    return {number(parts[0]), number(parts[1]), number(parts[2]), number(parts[3])};
  }

  Color web_color(const std::string& digits) const {
    if (digits.size() != 6) refuse();
    const auto part = [&](std::size_t at) {
      int byte = 0;
      const char* const end = digits.data() + at + 2;
      const auto result = std::from_chars(digits.data() + at, end, byte, 16);
      if (result.ec != std::errc() || result.ptr != end || byte < 0) refuse();
      return byte / 255.0;
    };
    return {part(0), part(2), part(4), 1.0};
  }

  Pattern pattern() const {
    const auto parts = split(text_, list_separator);
    if (parts.size() != 5) refuse();
    Pattern result;
    result.type = static_cast<Pattern::Type>(whole_number(parts[0]));
    result.name = library_text(plain(parts[1]));
    result.scale = number(parts[2]);
    result.angle = number(parts[3]);
    result.cross = yes_no(parts[4]);
    return result;
  }

  Point2d point() const {
    const auto parts = split(text_, list_separator);
    if (parts.size() != 2) refuse();
    return {number(parts[0]), number(parts[1])};
  }

  Value::Layers layers() const {
    Value::Layers result;
    for (const auto& text : split(text_, list_separator)) {
      const auto parts = split(text, layer_separator);
      if (parts.size() < 2 || parts.size() > 3) refuse();
      const auto function = parts.size() == 3 ? whole_number(parts[2]) : 0;
      result.push_back({plain(parts[0]), measured(parts[1]), static_cast<int>(function)});
    }
    return result;
  }

  const FieldDescription& field_;
  const std::string& text_;
  Unit library_;
};

}  // namespace

Value value_from_text(const FieldDescription& field, const std::string& text, Unit library) {
  if (text.empty() || (field.kind != Value::Kind::Text && trimmed(text).empty())) return {};
  return Reader(field, text, library).value();
}

}  // namespace veldra::kit
