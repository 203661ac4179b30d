// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_TABLE_TEXT_HPP
#define VELDRA_KIT_EXCHANGE_TABLE_TEXT_HPP

#include <veldra/kit/fields.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace veldra::kit {

/// How the text of a table is written.
struct TableStyle {
  char separator = ',';
  char decimal = '.';
};

using Cells = std::vector<std::string>;

/// The row of these cells (RFC 4180), with its end.
std::string row_text(const Cells& cells, const TableStyle& style);

/// The cell for a value of a field.
std::string cell_of(const FieldDescription& field, const Value& value, const TableStyle& style);

/// The cell for a text. One that a spreadsheet would take for a formula, or that would be read as
/// a number that it is not, has an apostrophe before it.
std::string cell_of_text(const std::string& text, const TableStyle& style);

/// The text for which a cell stands.
std::string text_of_cell(const std::string& cell, const TableStyle& style);

/// The same of a cell of a field, in the form of `value_from_text`.
std::string text_of_cell(const FieldDescription& field, const std::string& cell,
                         const TableStyle& style);

/// Takes the text of a table apart. The text must outlive it.
class TableScanner {
 public:
  TableScanner(std::string_view text, char separator) : rest_(text), separator_(separator) {}

  /// The next row that is not blank; returns false at the end of the text. Of a row with too many
  /// cells it gives more than `most_cells` of them.
  bool next(Cells& cells);

  /// The line in which the row begins.
  unsigned line() const noexcept { return line_of_row_; }

  /// Whether a quote was open at the end of the text.
  bool is_open() const noexcept { return open_; }

  /// Whether a cell was longer than `longest_cell`, and lacks what is beyond.
  bool is_too_long() const noexcept { return too_long_; }

  static constexpr std::size_t most_cells = 10000;
  static constexpr std::size_t longest_cell = 1 << 20;

 private:
  bool next_row(Cells& cells);
  void take_quoted(std::string& cell);
  void append(char character, std::string& cell);
  char take();

  std::string_view rest_;
  char separator_;
  unsigned line_ = 1;
  unsigned line_of_row_ = 1;
  bool open_ = false;
  bool too_long_ = false;
};

/// The separator of a table: the one that its first line has most of; of those that it has as many
/// of, or none of any, the usual one.
char separator_in(std::string_view text, char usual = ',');

/// Whether a text looks like a table: its first lines have as many cells, which those of prose and
/// of programs seldom have, or it begins as one that was written here.
bool looks_like_table(std::string_view text);

}  // namespace veldra::kit

#endif
