// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/select/scanner.hpp"

#include <veldra/kit/select.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

constexpr const char* blanks = " \t\r\n";

struct WrittenOperator {
  const char* text;
  Operator meaning;
};

/// The longer ones first.
constexpr WrittenOperator operators[] = {
    {"==", Operator::SameExactly}, {"=", Operator::Equal},
    {"!=", Operator::Unequal},     {"~~", Operator::ContainsExactly},
    {"~", Operator::Contains},     {"<=", Operator::LessOrEqual},
    {"<", Operator::Less},         {">=", Operator::GreaterOrEqual},
    {">", Operator::Greater}};

/// A word such as "and" that is written without quotes.
bool is_keyword(const std::string& word) {
  const std::string lower = lower_case(word);
  return lower == "and" || lower == "or" || lower == "not" || lower == "is";
}

/// How many characters, and not bytes, there are.
std::size_t count_characters(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
  }));
}

}  // namespace

void Scanner::expect(const std::string& what) const {
  const auto begin = std::min(text_.find_first_not_of(blanks, at_), text_.size());
  auto end = std::min(text_.find_first_of(" \t\r\n()", begin), text_.size());
  if (end == begin && end < text_.size()) ++end;
  const std::string found =
      begin == text_.size() ? "the end" : fmt::format("'{}'", text_.substr(begin, end - begin));
  refuse(begin, fmt::format("expected {}, found {}", what, found));
}

void Scanner::refuse(std::size_t place, const std::string& sentence) const {
  throw FilterError(count_characters(text_.substr(0, place)) + 1, sentence);
}

void Scanner::skip_blanks() { at_ = std::min(text_.find_first_not_of(blanks, at_), text_.size()); }

std::size_t Scanner::end_of_run(const char* ends) const {
  return std::min(text_.find_first_of(ends, at_), text_.size());
}

bool Scanner::at_end() {
  skip_blanks();
  return at_ == text_.size();
}

std::size_t Scanner::place() {
  skip_blanks();
  return at_;
}

bool Scanner::pass(char character) {
  if (at_end() || text_[at_] != character) return false;
  ++at_;
  return true;
}

bool Scanner::pass_word(const std::string& word) {
  skip_blanks();
  const auto end = end_of_run(" \t\r\n()\"'`=!~<>");
  if (lower_case(text_.substr(at_, end - at_)) != word) return false;
  at_ = end;
  return true;
}

std::string Scanner::quoted(const std::string& what) {
  const char quote = text_[at_];
  const auto end = text_.find(quote, at_ + 1);
  if (end == std::string::npos) refuse(at_, fmt::format("the quote of {} has no end", what));
  const std::string inner = text_.substr(at_ + 1, end - at_ - 1);
  at_ = end + 1;
  return inner;
}

std::string Scanner::field_name() {
  if (at_end()) expect("the name of a field");
  if (text_[at_] == '`') return quoted("the name");
  const auto end = end_of_run(" \t\r\n()\"'`=!~<>");
  const std::string name = text_.substr(at_, end - at_);
  if (name.empty() || is_keyword(name)) expect("the name of a field");
  at_ = end;
  return name;
}

std::optional<Operator> Scanner::comparing_operator() {
  skip_blanks();
  for (const WrittenOperator& written : operators) {
    const std::string text = written.text;
    if (text_.compare(at_, text.size(), text) != 0) continue;
    at_ += text.size();
    return written.meaning;
  }
  return std::nullopt;
}

std::string Scanner::value(const FieldDescription& field, Unit unit) {
  if (at_end()) expect("a value");
  if (text_[at_] == '"' || text_[at_] == '\'') return quoted("the value");
  if (field.measure != Measure::None && comparing_of(field) == Comparing::Numbers) {
    const std::string number = number_with_unit(field, unit);
    if (!number.empty()) return number;
  }
  const auto end = end_of_run(" \t\r\n()\"'`");
  const std::string value = text_.substr(at_, end - at_);
  if (value.empty() || is_keyword(value)) expect("a value");
  at_ = end;
  return value;
}

std::string Scanner::number_with_unit(const FieldDescription& field, Unit unit) {
  constexpr std::size_t longest_unit = 16;
  const auto digits = std::min(text_.find_first_not_of("0123456789.+-eE", at_), text_.size());
  const auto begin = std::min(text_.find_first_not_of(blanks, digits), text_.size());
  for (auto end = std::min(begin + longest_unit, text_.size()); end > begin; --end) {
    const bool ends_here =
        end == text_.size() || std::string_view(" \t\r\n)").find(text_[end]) != std::string::npos;
    if (!ends_here || !unit_factor(text_.substr(begin, end - begin), field.measure, unit)) continue;
    const std::string number = text_.substr(at_, end - at_);
    at_ = end;
    return number;
  }
  return {};
}

}  // namespace veldra::kit
