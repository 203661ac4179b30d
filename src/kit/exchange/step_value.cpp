// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/step_value.hpp"

#include <veldra/kit/text.hpp>

#include "kit/exchange/step_scan.hpp"
#include "kit/text/characters.hpp"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

namespace veldra::kit {

namespace {

constexpr char32_t replacement = 0xfffd;

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

/// The number of hexadecimal digits at the beginning of a text; negative if they are not there.
long long number_of_digits(std::string_view text, std::size_t digits) {
  if (text.size() < digits) return -1;
  long long number = 0;
  const char* const end = text.data() + digits;
  const auto result = std::from_chars(text.data(), end, number, 16);
  return result.ec == std::errc() && result.ptr == end ? number : -1;
}

/// A library has no text with the character 0, and half a pair of UTF-16 is no character.
void append_valid(std::string& text, long long character) {
  const bool is_half = character >= 0xd800 && character <= 0xdfff;
  const bool is_valid = character > 0 && character <= 0x10ffff && !is_half;
  append_character(text, is_valid ? static_cast<char32_t>(character) : replacement);
}

/// Reads the escapes of strings. What is none stays as it is written.
class StringDecoder {
 public:
  explicit StringDecoder(std::string_view encoded) : rest_(encoded) {}

  std::string decode() {
    while (!rest_.empty()) {
      const auto plain = std::min(rest_.find_first_of("'\\"), rest_.size());
      text_.append(rest_.substr(0, plain));
      rest_.remove_prefix(plain);
      if (rest_.empty()) break;
      if (rest_[0] == '\'') {
        take(begins_with(rest_, "''") ? 2 : 1);
        text_ += '\'';
      } else if (!decode_escape()) {
        text_ += '\\';
        take(1);
      }
    }
    return std::move(text_);
  }

 private:
  void take(std::size_t count) { rest_.remove_prefix(count); }

  bool decode_escape() {
    if (begins_with(rest_, "\\\\")) {
      text_ += '\\';
      take(2);
      return true;
    }
    if (begins_with(rest_, "\\X2\\")) return decode_run(4);
    if (begins_with(rest_, "\\X4\\")) return decode_run(8);
    if (begins_with(rest_, "\\X\\")) return decode_byte();
    if (begins_with(rest_, "\\S\\") && rest_.size() > 3) return decode_shifted();
    return decode_page();
  }

  bool decode_byte() {
    const auto byte = number_of_digits(rest_.substr(3), 2);
    if (byte < 0) return false;
    append_valid(text_, byte);
    take(5);
    return true;
  }

  /// A character of the upper half of the page. Those of other pages than Latin-1 are not known
  /// here.
  bool decode_shifted() {
    const auto byte = static_cast<unsigned char>(rest_[3]);
    if (byte >= 0x80) return false;
    append_valid(text_, page_ == 'A' ? byte + 0x80 : -1);
    take(4);
    return true;
  }

  /// `\PA\` to `\PI\` choose the page.
  bool decode_page() {
    const bool is_page = rest_.size() > 3 && rest_[1] == 'P' && rest_[2] >= 'A' &&
                         rest_[2] <= 'I' && rest_[3] == '\\';
    if (!is_page) return false;
    page_ = rest_[2];
    take(4);
    return true;
  }

  /// Characters of so many digits each, until `\X0\`.
  bool decode_run(std::size_t digits) {
    auto inner = rest_.substr(4);
    std::string decoded;
    while (!begins_with(inner, "\\X0\\")) {
      auto character = number_of_digits(inner, digits);
      if (character < 0) return false;
      inner.remove_prefix(digits);
      const bool is_high = digits == 4 && character >= 0xd800 && character < 0xdc00;
      const auto low = is_high ? number_of_digits(inner, 4) : -1;
      if (low >= 0xdc00 && low <= 0xdfff) {
        character = 0x10000 + ((character - 0xd800) << 10 | (low - 0xdc00));
        inner.remove_prefix(4);
      }
      append_valid(decoded, character);
    }
    text_ += decoded;
    rest_ = inner.substr(4);
    return true;
  }

  std::string_view rest_;
  std::string text_;
  char page_ = 'A';
};

/// The length of the UTF-8 sequence that begins with a byte, and the bits that are of the
/// character.
std::pair<std::size_t, unsigned> sequence_of(unsigned char first) {
  if (first >= 0xf0) return {4, first & 0x07U};
  if (first >= 0xe0) return {3, first & 0x0fU};
  if (first >= 0xc0) return {2, first & 0x1fU};
  return {1, first};
}

}  // namespace

StepValue::StepValue(std::string_view text) : text_(step_scan::without_margins(text)) {}

std::optional<std::uint64_t> StepValue::reference() const {
  if (text_.size() < 2 || text_[0] != '#') return std::nullopt;
  std::uint64_t number = 0;
  const char* const end = text_.data() + text_.size();
  const auto result = std::from_chars(text_.data() + 1, end, number);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

std::optional<std::string> StepValue::text() const {
  if (text_.size() < 2 || text_.front() != '\'' || text_.back() != '\'') return std::nullopt;
  return text_of_step(text_.substr(1, text_.size() - 2));
}

std::optional<double> StepValue::number() const {
  if (text_.empty()) return std::nullopt;
  const char* const begin = text_.data() + (text_[0] == '+' ? 1 : 0);
  const char* const end = text_.data() + text_.size();
  if (begin == end || (!is_digit(*begin) && *begin != '-' && *begin != '.')) return std::nullopt;
  double number = 0;
  const auto result = std::from_chars(begin, end, number);
  if (result.ec != std::errc() || result.ptr != end || !std::isfinite(number)) return std::nullopt;
  return number;
}

std::string_view StepValue::enumeration() const {
  const bool is_one = text_.size() > 2 && text_.front() == '.' && text_.back() == '.';
  return is_one ? text_.substr(1, text_.size() - 2) : std::string_view();
}

std::string_view StepValue::type() const {
  const auto word = step_scan::word_at(text_);
  return word.size() < text_.size() ? word : std::string_view();
}

StepValue StepValue::content() const {
  const auto word = type();
  return word.empty() ? *this : StepValue(StepValue(text_.substr(word.size())).list());
}

std::string_view StepValue::list() const {
  const bool is_list = text_.size() > 1 && text_.front() == '(' && text_.back() == ')';
  return is_list ? step_scan::without_margins(text_.substr(1, text_.size() - 2))
                 : std::string_view();
}

StepValue StepValue::take(std::string_view& rest) {
  const auto size = step_scan::size_of_value(rest);
  const StepValue value(rest.substr(0, size));
  rest.remove_prefix(std::min(size + 1, rest.size()));
  return value;
}

std::string text_of_step(std::string_view encoded) { return StringDecoder(encoded).decode(); }

std::string step_text(std::string_view text) {
  std::string result = "'";
  while (!text.empty()) {
    const auto [size, bits] = sequence_of(static_cast<unsigned char>(text[0]));
    char32_t character = bits;
    for (const char next : text.substr(1, size - 1)) {
      character = character << 6 | (static_cast<unsigned char>(next) & 0x3fU);
    }
    if (text[0] == '\'' || text[0] == '\\') {
      result.append(2, text[0]);
    } else if (character >= 0x20 && character < 0x7f) {
      result += text[0];
    } else if (character < 0x10000) {
      result += fmt::format("\\X2\\{:04X}\\X0\\", static_cast<unsigned>(character));
    } else {
      result += fmt::format("\\X4\\{:08X}\\X0\\", static_cast<unsigned>(character));
    }
    text.remove_prefix(std::min(size, text.size()));
  }
  return result + "'";
}

std::string step_real(double number) {
  std::string text = exact_number(number);
  const auto exponent = std::min(text.find('e'), text.size());
  if (exponent < text.size()) text[exponent] = 'E';
  if (text.find('.') > exponent) text.insert(exponent, ".");
  return text;
}

}  // namespace veldra::kit
