// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_DRAWING_WORDS_HPP
#define VELDRA_KIT_DRAWING_WORDS_HPP

#include <algorithm>
#include <cstddef>
#include <string>

namespace veldra::kit {

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

  /// The name of a month from 0.
  const char* month(std::size_t month) const {
    constexpr const char* english[] = {"January",   "February", "March",    "April",
                                       "May",       "June",     "July",     "August",
                                       "September", "October",  "November", "December"};
    constexpr const char* german[] = {"Januar",    "Februar", "März",     "April",
                                      "Mai",       "Juni",    "Juli",     "August",
                                      "September", "Oktober", "November", "Dezember"};
    return say(english[month], german[month]);
  }

  const char* code() const { return german_ ? "de" : "en"; }

 private:
  bool german_;
};

}  // namespace veldra::kit

#endif
