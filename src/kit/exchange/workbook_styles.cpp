// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/workbook_styles.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <cmath>
#include <map>
#include <string_view>

namespace veldra::kit {

namespace {

bool is_between(int number, int least, int most) { return number >= least && number <= most; }

/// Formats that have no text of their own.
bool is_date_number(int format) {
  return is_between(format, 14, 22) || is_between(format, 27, 36) || is_between(format, 45, 47) ||
         is_between(format, 50, 58);
}

/// Whether a format has days, months or hours outside of quotes and brackets.
bool is_date_code(const std::string& code) {
  char until = '\0';
  for (std::size_t i = 0; i < code.size(); ++i) {
    const char character = code[i];
    if (until != '\0') {
      if (character == until) until = '\0';
    } else if (character == '"' || character == '[') {
      until = character == '"' ? '"' : ']';
    } else if (character == '\\' || character == '_' || character == '*') {
      ++i;
    } else if (std::string_view("yYmMdDhHsS").find(character) != std::string_view::npos) {
      return true;
    }
  }
  return false;
}

struct Date {
  long year;
  unsigned month;
  unsigned day;
};

/// The date of a number of days since the first of January 1970 in the Gregorian calendar, by eras
/// of 400 years that begin in March.
Date date_of(long days) {
  constexpr long days_of_era = 146097;
  const long shifted = days + 719468;
  const long era = (shifted >= 0 ? shifted : shifted - days_of_era + 1) / days_of_era;
  const auto day_of_era = static_cast<unsigned>(shifted - era * days_of_era);
  const unsigned year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const unsigned day_of_year =
      day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const unsigned month_from_march = (5 * day_of_year + 2) / 153;
  const unsigned day = day_of_year - (153 * month_from_march + 2) / 5 + 1;
  const unsigned month = month_from_march < 10 ? month_from_march + 3 : month_from_march - 9;
  const long year = static_cast<long>(year_of_era) + era * 400 + (month <= 2 ? 1 : 0);
  return {year, month, day};
}

}  // namespace

std::vector<bool> date_styles(const XmlDocument& styles) {
  std::map<int, bool> own;
  for (const auto& format : styles.root().child("numFmts").children()) {
    own[format.attribute("numFmtId").as_int()] =
        is_date_code(format.attribute("formatCode").value());
  }
  std::vector<bool> dates;
  for (const auto& style : styles.root().child("cellXfs").children()) {
    const int format = style.attribute("numFmtId").as_int();
    const auto found = own.find(format);
    dates.push_back(found != own.end() ? found->second : is_date_number(format));
  }
  return dates;
}

std::string date_text(double days, bool from_1904) {
  constexpr double latest = 2958466;  // the end of the year 9999
  if (!(days >= 0 && days < latest)) return exact_number(days);
  constexpr long to_1900 = 25569;  // days from there to 1970
  constexpr long to_1904 = 24107;
  constexpr long seconds_of_day = 86400;
  auto whole = static_cast<long>(std::floor(days));
  auto seconds = std::lround((days - std::floor(days)) * seconds_of_day);
  whole += seconds / seconds_of_day;
  seconds %= seconds_of_day;
  const auto date = date_of(whole - (from_1904 ? to_1904 : to_1900));
  const auto text = fmt::format("{:04}-{:02}-{:02}", date.year, date.month, date.day);
  if (seconds == 0) return text;
  return fmt::format("{}T{:02}:{:02}:{:02}", text, seconds / 3600, seconds / 60 % 60, seconds % 60);
}

}  // namespace veldra::kit
