// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/recognition.hpp"

#include <veldra/kit/text.hpp>

#include "kit/exchange/problem.hpp"
#include "kit/exchange/step_scan.hpp"
#include "kit/text/characters.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string_view>
#include <vector>

namespace veldra::kit {

namespace {

using namespace std::string_view_literals;

[[noreturn]] void refuse(const std::string& file, const std::string& sentence) {
  fail_at(file, 0, sentence);
}

/// The names of the formats that can be read, as people list them.
std::string readable_formats() {
  std::string names;
  for (const auto& format : formats()) {
    if (format.readable) names += (names.empty() ? "" : ", ") + format.name;
  }
  return names;
}

[[noreturn]] void refuse_format(const std::string& file, const std::string& format) {
  refuse(file, fmt::format("this seems to be {}, for which there is no reader; there are readers "
                           "for {}",
                           format, readable_formats()));
}

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

std::string_view without_leading_blanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n\v\f");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

/// What begins with bytes that no text of the formats begins with.
std::string format_by_mark(std::string_view content) {
  constexpr std::pair<std::string_view, const char*> marks[] = {
      {"%PDF-"sv, "a PDF document"},
      {"\x89PNG\r\n"sv, "a picture (PNG)"},
      {"\xff\xd8\xff"sv, "a picture (JPEG)"},
      {"GIF8"sv, "a picture (GIF)"},
      {"II*\0"sv, "a picture (TIFF)"},
      {"MM\0*"sv, "a picture (TIFF)"},
      {"RIFF"sv, "a picture, a sound or a film (RIFF)"},
      {"\x1f\x8b"sv, "a compressed file (gzip)"},
      {"7z\xbc\xaf"sv, "an archive (7z)"},
      {"\xfd"
       "7zXZ"sv,
       "a compressed file (xz)"},
      {"\xd0\xcf\x11\xe0"sv, "an old office document (such as XLS)"},
      {"{\\rtf"sv, "a text document (RTF)"}};
  for (const auto& [mark, format] : marks) {
    if (begins_with(content, mark)) return format;
  }
  return "";
}

/// The names of the files in an archive stand in it as they are.
std::string format_of_archive(std::string_view content) {
  if (contains(content, "xl/workbook")) return "a spreadsheet (XLSX)";
  if (contains(content, "opendocument.spreadsheet")) return "a spreadsheet (ODS)";
  if (contains(content, "word/document")) return "a text document (DOCX)";
  if (contains(content, ".ifc")) return "a compressed IFC model";
  return "an archive (ZIP)";
}

bool is_archive(std::string_view content) {
  return begins_with(content, "PK\x03\x04") || begins_with(content, "PK\x05\x06");
}

std::string format_of_xml(std::string_view content) {
  constexpr std::size_t head = 4096;
  std::string beginning(content.substr(0, head));
  std::transform(beginning.begin(), beginning.end(), beginning.begin(),
                 [](unsigned char letter) { return std::tolower(letter); });
  if (contains(beginning, "<gbxml") || contains(beginning, ":gbxml ")) return "gbXML";
  if (contains(beginning, "<svg")) return "a picture (SVG)";
  if (contains(beginning, "<html")) return "an HTML page";
  if (contains(beginning, "ifcxml")) return "an IFC model in XML";
  return "XML";
}

bool is_xml(std::string_view text) {
  if (text.size() < 2 || text[0] != '<') return false;
  const char next = text[1];
  return next == '?' || next == '!' || (next >= 'A' && next <= 'Z') || (next >= 'a' && next <= 'z');
}

/// Every other byte of most texts in UTF-16 is zero.
bool is_utf16(std::string_view content) {
  if (begins_with(content, "\xff\xfe") || begins_with(content, "\xfe\xff")) return true;
  const auto head = content.substr(0, 256);
  if (head.size() < 4) return false;
  std::size_t zeros[2] = {0, 0};
  for (std::size_t i = 0; i < head.size(); ++i) zeros[i % 2] += head[i] == '\0' ? 1 : 0;
  const std::size_t most = head.size() / 2 * 9 / 10;
  return (zeros[0] > most && zeros[1] == 0) || (zeros[1] > most && zeros[0] == 0);
}

/// The number that some bytes of the head of a database stand for.
std::size_t number_in_head(std::string_view content, std::size_t place, std::size_t size) {
  std::size_t number = 0;
  for (const char byte : content.substr(place, size)) {
    number = number << 8 | static_cast<unsigned char>(byte);
  }
  return number;
}

/// Whether the file has less pages than its head says. A size of 65536 stands there as 1.
bool is_cut_off(std::string_view content) {
  constexpr std::size_t size_of_head = 100;
  if (content.size() < size_of_head) return true;
  const auto size = number_in_head(content, 16, 2);
  const auto pages = number_in_head(content, 28, 4);
  return content.size() < pages * (size == 1 ? 65536 : size);
}

void refuse_database(std::string_view content, const std::string& file) {
  if (is_cut_off(content)) {
    refuse(file,
           "this is a part of a library or of another database, of which the rest is missing");
  }
  if (!contains(content, "Composition_layers"))
    refuse_format(file, "the database of another program");
  refuse(file, "this is a library, which is not read as a source; copy objects from it instead");
}

void require_readable_xml(std::string_view text, const std::string& file) {
  const auto name = format_of_xml(text);
  const auto& all = formats();
  const bool is_read = std::any_of(all.begin(), all.end(), [&](const Format& format) {
    return format.name == name && format.readable;
  });
  if (!is_read) refuse_format(file, name);
}

void require_readable(const std::string& content, const std::string& file) {
  const std::string mark = format_by_mark(content);
  if (!mark.empty()) refuse_format(file, mark);
  if (begins_with(content, "SQLite format 3\0"sv)) refuse_database(content, file);
  if (is_archive(content)) refuse_format(file, format_of_archive(content));
  const auto text = without_leading_blanks(content);
  if (text.empty()) refuse(file, "this is empty");
  if (contains(text, "\0"sv)) refuse_format(file, "a binary file");
  if (is_xml(text)) require_readable_xml(text, file);
  if (is_step(text) && !contains(text.substr(0, 1 << 16), "IFC"))
    refuse_format(file, "a STEP file");
}

/// Whether a content is a workbook, and there is a reader for these.
bool is_workbook(std::string_view content) {
  const auto* format = find_format("XLSX");
  return is_archive(content) && contains(content, "xl/workbook") && format != nullptr &&
         format->readable;
}

/// The code units of a text in UTF-16, the first byte of which is at one of two places.
char32_t unit_at(std::string_view content, std::size_t place, bool little) {
  const auto first = static_cast<unsigned char>(content[place]);
  const auto second = static_cast<unsigned char>(content[place + 1]);
  return little ? first | second << 8 : first << 8 | second;
}

/// The text in UTF-8, with the mark that it may begin with.
std::string from_utf16(std::string_view content, const std::string& file) {
  const bool little = begins_with(content, "\xff\xfe") || content[0] != '\0';
  const bool big_mark = begins_with(content, "\xfe\xff");
  const bool is_little = little && !big_mark;
  if (content.size() % 2 != 0)
    refuse(file, "this is a text in UTF-16 that ends within a character");
  std::string text;
  text.reserve(content.size() / 2);
  for (std::size_t i = 0; i < content.size(); i += 2) {
    char32_t character = unit_at(content, i, is_little);
    if (character >= 0xd800 && character < 0xdc00 && i + 3 < content.size()) {
      const auto low = unit_at(content, i + 2, is_little);
      if (low < 0xdc00 || low > 0xdfff) refuse(file, "this is malformed UTF-16");
      character = 0x10000 + ((character - 0xd800) << 10 | (low - 0xdc00));
      i += 2;
    } else if (character >= 0xd800 && character <= 0xdfff) {
      refuse(file, "this is malformed UTF-16");
    }
    append_character(text, character);
  }
  return text;
}

void drop_byte_order_mark(std::string& text) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (begins_with(text, mark)) text.erase(0, mark.size());
}

bool starts_as_json(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && (text[first] == '{' || text[first] == '[');
}

}  // namespace

bool is_step(std::string_view text) {
  const auto begin = step_scan::behind_margin(text, 0);
  return begin != std::string_view::npos && begins_with(text.substr(begin), "ISO-10303-21;");
}

FileContent content_from(const std::string& file, std::string bytes) {
  if (is_workbook(bytes)) return {file, std::move(bytes), std::nullopt, Encoding::Binary};
  auto encoding = Encoding::Utf8;
  if (is_utf16(bytes)) {
    encoding = Encoding::Utf16;
    bytes = from_utf16(bytes, file);
  }
  drop_byte_order_mark(bytes);
  require_readable(bytes, file);
  if (starts_as_json(bytes)) return {file, "", parse_json(bytes, file), encoding};
  if (is_utf8(bytes)) return {file, std::move(bytes), std::nullopt, encoding};
  return {file, from_latin1(bytes), std::nullopt, Encoding::Latin1};
}

bool is_gbxml(const std::string& text) {
  const auto content = without_leading_blanks(text);
  return is_xml(content) && format_of_xml(content) == "gbXML";
}

void refuse_unknown(const FileContent& content) {
  refuse_format(content.file, content.document ? "JSON of another kind" : "plain text");
}

}  // namespace veldra::kit
