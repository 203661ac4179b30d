// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_WORKBOOK_NAMES_HPP
#define VELDRA_KIT_EXCHANGE_WORKBOOK_NAMES_HPP

#include <cstddef>
#include <set>
#include <string>

namespace veldra::kit {

/// The sheet that holds what cells may be, which nobody sees.
constexpr const char* lists_sheet = "veldra lists";

/// How many sheets of layers a workbook has. Of more build-ups one sheet has the layers.
constexpr std::size_t most_layer_sheets = 500;

/// What a cell takes, in code units of UTF-16.
constexpr std::size_t longest_cell_text = 32767;

/// Gives out names of sheets: of 31 characters at most, without some signs, and each once in
/// whatever case.
class SheetNames {
 public:
  SheetNames();

  /// A free name that is like the wanted one as far as that can be.
  std::string take(const std::string& wanted);

 private:
  std::set<std::string> taken_;  ///< folded
};

/// The letters of a column, counted from 0.
std::string column_letters(std::size_t column);

/// What a cell is called in a formula or a sentence, such as "materials!C5". Rows count from 1.
std::string cell_address(const std::string& sheet, std::size_t column, unsigned row);

/// How many code units a text has in UTF-16.
std::size_t utf16_size(const std::string& text);

/// The text with what XML cannot hold as escapes (_x0001_), and what looks like one so that it is
/// none.
std::string with_cell_escapes(const std::string& text);

/// The text that these stand for.
std::string without_cell_escapes(const std::string& text);

}  // namespace veldra::kit

#endif
