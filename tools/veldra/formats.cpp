// SPDX-License-Identifier: GPL-2.0-or-later
#include "formats.hpp"

#include "failure.hpp"
#include "files/output_file.hpp"
#include "files/path.hpp"
#include "locale.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace veldra_tool {

namespace {

/// The languages in whose regions numbers have a comma, so that cells have semicolons between them.
constexpr std::string_view languages_with_comma[] = {
    "bg", "ca", "cs", "da", "de", "el", "es", "et", "fi", "fr", "hr", "hu", "id", "is", "it", "lt",
    "lv", "nb", "nl", "nn", "no", "pl", "pt", "ro", "ru", "sk", "sl", "sr", "sv", "tr", "uk"};

bool has_ending(const kit::Format& format, const std::string& ending) {
  return std::find(format.endings.begin(), format.endings.end(), ending) != format.endings.end();
}

void require_writer(const kit::Format& format, const std::string& option) {
  if (format.writable) return;
  if (!format.readable) {
    throw CLI::ValidationError(
        option, fmt::format("this build has no writer for {}; there are writers for {}",
                            format.name, writable_formats()));
  }
  throw CLI::ValidationError(option, fmt::format("{} can only be read; there are writers for {}",
                                                 format.name, writable_formats()));
}

const kit::Format& format_of_ending(const std::string& output) {
  const auto ending = is_standard_output(output) ? std::string() : ending_of(output);
  if (ending.empty()) return *kit::find_format("json");
  const auto* format = kit::find_format(ending);
  if (format == nullptr) {
    throw CLI::ValidationError(
        "--output", fmt::format("{} has the ending of none of the formats {}", in_quotes(output),
                                writable_formats()));
  }
  require_writer(*format, "--output");
  return *format;
}

}  // namespace

std::string word_of(const kit::Format& format) { return format.endings.front(); }

std::string writable_formats() {
  std::string words;
  for (const auto& format : kit::formats()) {
    if (format.writable) words += (words.empty() ? "" : ", ") + word_of(format);
  }
  return words;
}

const kit::Format& format_for(const std::string& given, const std::string& output) {
  if (given.empty()) return format_of_ending(output);
  const auto* format = kit::find_format(given);
  if (format == nullptr) {
    throw CLI::ValidationError(
        "--format", fmt::format("{} is none of {}", in_quotes(given), writable_formats()));
  }
  require_writer(*format, "--format");
  const auto ending = is_standard_output(output) ? std::string() : ending_of(output);
  if (ending.empty() || has_ending(*format, ending)) return *format;
  throw CLI::ValidationError(
      "--output", fmt::format("{} has the ending of another format; what is written is {}",
                              in_quotes(output), word_of(*format)));
}

void add_table_locale(CLI::App& command, std::string& locale) {
  const auto is_known = [](const std::string& text) {
    if (is_locale(text)) return std::string();
    return fmt::format("{} is no locale, such as de or de_CH", in_quotes(text));
  };
  command
      .add_option("--locale", locale,
                  "The region whose spreadsheets use the tables: with de there are semicolons "
                  "between cells and commas in numbers")
      ->check(CLI::Validator(is_known, "", "locale"))
      ->type_name("LOCALE");
}

TableSigns table_signs(const std::string& locale) {
  const auto language = locale.substr(0, locale.find_first_of("_-"));
  const bool comma = std::find(std::begin(languages_with_comma), std::end(languages_with_comma),
                               language) != std::end(languages_with_comma);
  const auto country = locale.substr(std::min(locale.size(), language.size() + 1));
  if (country == "CH" || country == "LI") return {';', '.'};
  return comma ? TableSigns{';', ','} : TableSigns{};
}

}  // namespace veldra_tool
