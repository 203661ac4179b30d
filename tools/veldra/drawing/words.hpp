// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_DRAWING_WORDS_HPP
#define VELDRA_TOOL_DRAWING_WORDS_HPP

#include <algorithm>
#include <string>

namespace veldra_tool {

/// The language of a sheet: German for locales that begin with "de", else English.
class Words {
 public:
  explicit Words(const std::string& locale = "") : german_(locale.compare(0, 2, "de") == 0) {}

  const char* say(const char* english, const char* german) const {
    return german_ ? german : english;
  }

  /// A number with the decimal sign of the language.
  std::string number(std::string text) const {
    if (german_) std::replace(text.begin(), text.end(), '.', ',');
    return text;
  }

  const char* code() const { return german_ ? "de" : "en"; }

 private:
  bool german_;
};

}  // namespace veldra_tool

#endif
