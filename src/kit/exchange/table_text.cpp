// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/table_text.hpp"

#include "kit/fields/field.hpp"

#include <veldra/kit/text.hpp>

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace veldra::kit {

namespace {

constexpr const char* line_end = "\r\n";
constexpr char apostrophe = '\'';

/// Spreadsheets take a text that begins like this for a formula; an apostrophe before it says that
/// it is none, and so one that is part of a text needs another.
bool needs_guard(const std::string& text) {
  return !text.empty() && std::string_view("=+-@\t\r'").find(text[0]) != std::string_view::npos;
}

std::string replaced(std::string text, char from, char to) {
  std::replace(text.begin(), text.end(), from, to);
  return text;
}

bool is_numeric(Value::Kind kind) {
  switch (kind) {
    case Value::Kind::WholeNumber:
    case Value::Kind::Number:
    case Value::Kind::Numbers:
    case Value::Kind::Color:
    case Value::Kind::Point:
      return true;
    default:
      return false;
  }
}

/// Whether a text is a number with that sign between its digits.
bool is_number_with(const std::string& text, char decimal) {
  return text.find(decimal) != std::string::npos &&
         text.find(decimal == ',' ? '.' : ',') == std::string::npos &&
         number_in(replaced(text, decimal, '.')).has_value();
}

std::string quoted_if_needed(const std::string& cell, char separator) {
  const char special[] = {separator, '"', '\r', '\n', '\0'};
  const bool blanks = !cell.empty() && (cell.front() == ' ' || cell.back() == ' ');
  if (!blanks && cell.find_first_of(special) == std::string::npos) return cell;
  std::string result = "\"";
  for (const char character : cell) {
    if (character == '"') result += '"';
    result += character;
  }
  return result + "\"";
}

bool is_blank_row(const Cells& cells) {
  return std::all_of(cells.begin(), cells.end(), [](const auto& cell) { return cell.empty(); });
}

std::string_view first_line(std::string_view text) {
  return text.substr(0, std::min(text.find_first_of("\r\n"), text.size()));
}

/// The first lines of a text that are not blank.
std::vector<std::string_view> first_lines(std::string_view text, std::size_t count) {
  std::vector<std::string_view> lines;
  while (!text.empty() && lines.size() < count) {
    const auto line = first_line(text);
    if (!trimmed(line.substr(0, 256)).empty()) lines.push_back(line);
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return lines;
}

constexpr std::pair<char, int> least_separators[] = {{',', 2}, {';', 2}, {'\t', 1}};

bool has_as_many(std::string_view one, std::string_view other) {
  return std::any_of(std::begin(least_separators), std::end(least_separators), [&](auto entry) {
    const auto [separator, least] = entry;
    const auto found = std::count(one.begin(), one.end(), separator);
    return found >= least && found == std::count(other.begin(), other.end(), separator);
  });
}

}  // namespace

std::string row_text(const Cells& cells, const TableStyle& style) {
  std::string row;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) row += style.separator;
    row += quoted_if_needed(cells[i], style.separator);
  }
  return row + line_end;
}

std::string cell_of_text(const std::string& text, const TableStyle& style) {
  if (needs_guard(text)) return apostrophe + text;
  if (style.decimal == '.') return text;
  if (is_number_with(text, ',')) return apostrophe + text;
  return is_number_with(text, '.') ? replaced(text, '.', ',') : text;
}

std::string cell_of(const FieldDescription& field, const Value& value, const TableStyle& style) {
  const auto text = counted_text(field, value);
  return is_numeric(field.kind) ? replaced(text, '.', style.decimal) : cell_of_text(text, style);
}

std::string text_of_cell(const std::string& cell, const TableStyle& style) {
  if (!cell.empty() && cell[0] == apostrophe) return cell.substr(1);
  const bool converts = style.decimal == ',' && is_number_with(cell, ',');
  return converts ? replaced(cell, ',', '.') : cell;
}

std::string text_of_cell(const FieldDescription& field, const std::string& cell,
                         const TableStyle& style) {
  if (!is_numeric(field.kind)) return text_of_cell(cell, style);
  const bool guarded = !cell.empty() && cell[0] == apostrophe;
  const auto text = guarded ? cell.substr(1) : cell;
  return style.decimal == ',' ? replaced(text, ',', '.') : text;
}

/// Counts LF, CRLF and a lone CR as one line break each.
char TableScanner::take() {
  const char character = rest_.front();
  rest_.remove_prefix(1);
  const bool pair = character == '\r' && !rest_.empty() && rest_.front() == '\n';
  if ((character == '\n' || character == '\r') && !pair) ++line_;
  return character;
}

void TableScanner::append(char character, std::string& cell) {
  if (cell.size() < longest_cell) {
    cell += character;
  } else {
    too_long_ = true;
  }
}

void TableScanner::take_quoted(std::string& cell) {
  open_ = true;
  while (!rest_.empty()) {
    const char character = take();
    if (character != '"') {
      append(character, cell);
      continue;
    }
    if (rest_.empty() || rest_.front() != '"') {
      open_ = false;
      return;
    }
    append(take(), cell);
  }
}

bool TableScanner::next_row(Cells& cells) {
  if (rest_.empty()) return false;
  line_of_row_ = line_;
  cells.assign(1, "");
  bool begins = true;
  while (!rest_.empty()) {
    const char character = take();
    if (character == '\n' || character == '\r') {
      if (character == '\r' && !rest_.empty() && rest_.front() == '\n') take();
      return true;
    }
    const bool is_separator = character == separator_;
    if (is_separator && cells.size() <= most_cells) cells.emplace_back();
    if (character == '"' && begins) {
      take_quoted(cells.back());
    } else if (!is_separator && cells.size() <= most_cells) {
      append(character, cells.back());
    }
    begins = is_separator;
  }
  return true;
}

bool TableScanner::next(Cells& cells) {
  while (next_row(cells)) {
    if (cells.size() > most_cells || !is_blank_row(cells)) return true;
  }
  return false;
}

char separator_in(std::string_view text, char usual) {
  std::map<char, std::size_t> counts;
  bool quoted = false;
  for (const char character : text) {
    if (character == '"') quoted = !quoted;
    if (quoted) continue;
    if (character == '\n' || character == '\r') break;
    ++counts[character];
  }
  char most = usual;
  for (const auto& [separator, least] : least_separators) {
    if (counts[separator] > counts[most]) most = separator;
  }
  return most;
}

bool looks_like_table(std::string_view text) {
  const auto head = first_line(text);
  if (head.size() > 5 && head.substr(0, 4) == "kind" &&
      std::string_view(",;\t").find(head[4]) != std::string_view::npos) {
    return true;
  }
  const auto lines = first_lines(text, 2);
  return lines.size() == 2 && has_as_many(lines[0], lines[1]);
}

}  // namespace veldra::kit
