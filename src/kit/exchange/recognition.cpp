// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/recognition.hpp"

#include <veldra/kit/text.hpp>

#include "kit/exchange/problem.hpp"

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

[[noreturn]] void refuse_format(const std::string& file, const std::string& format) {
  refuse(file, fmt::format("this seems to be {}, for which there is no reader; there are readers "
                           "for IDF, epJSON and the JSON that 'veldra export' writes",
                           format));
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

std::string format_of_xml(std::string_view content) {
  constexpr std::size_t head = 4096;
  std::string beginning(content.substr(0, head));
  std::transform(beginning.begin(), beginning.end(), beginning.begin(),
                 [](unsigned char letter) { return std::tolower(letter); });
  if (contains(beginning, "<gbxml")) return "gbXML";
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
  refuse(file, "this is a library; 'veldra copy' takes objects from libraries");
}

const JsonNode* first_value(const JsonNode& node) {
  if (!node.elements.empty()) return &node.elements.front();
  return node.members.empty() ? nullptr : &node.members.front().second;
}

bool has_text(const JsonNode& node, const char* member) {
  const JsonNode* value = node.member(member);
  return value != nullptr && value->kind == JsonNode::Kind::Text;
}

/// A honeybee object says its type and its identifier; several stand in a list or under names.
bool is_honeybee(const JsonNode& document) {
  const auto is_object = [](const JsonNode& node) {
    return has_text(node, "type") && has_text(node, "identifier");
  };
  const JsonNode* first = first_value(document);
  return is_object(document) || (first != nullptr && is_object(*first));
}

/// Lists of materials and constructions, maybe below the names of standards.
bool is_openstudio_standards(const JsonNode& node, int depth = 0) {
  for (const char* list : {"materials", "constructions"}) {
    const JsonNode* objects = node.member(list);
    const JsonNode* first = objects != nullptr ? first_value(*objects) : nullptr;
    if (first == nullptr) continue;
    for (const char* member : {"material_type", "intended_surface_type", "materials_standard",
                               "material_standard", "construction_standard"}) {
      if (first->member(member) != nullptr) return true;
    }
  }
  if (depth == 3) return false;
  return std::any_of(node.members.begin(), node.members.end(), [&](const auto& member) {
    return is_openstudio_standards(member.second, depth + 1);
  });
}

/// The first lines of a text that are not blank.
std::vector<std::string_view> first_lines(std::string_view text, std::size_t count) {
  std::vector<std::string_view> lines;
  while (!text.empty() && lines.size() < count) {
    const auto end = std::min(text.find_first_of("\r\n"), text.size());
    const auto line = text.substr(0, end);
    if (!without_leading_blanks(line).empty()) lines.push_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

/// Whether the first lines have as many cells. Prose and programs may have a comma in each line.
bool is_table(std::string_view text) {
  const auto lines = first_lines(text, 2);
  if (lines.size() < 2) return false;
  constexpr std::pair<char, int> least[] = {{',', 2}, {';', 2}, {'\t', 1}};
  return std::any_of(std::begin(least), std::end(least), [&](const auto& entry) {
    const auto [separator, count] = entry;
    const auto found = std::count(lines[0].begin(), lines[0].end(), separator);
    return found >= count && found == std::count(lines[1].begin(), lines[1].end(), separator);
  });
}

void require_readable(const std::string& content, const std::string& file) {
  const std::string mark = format_by_mark(content);
  if (!mark.empty()) refuse_format(file, mark);
  if (begins_with(content, "SQLite format 3\0"sv)) refuse_database(content, file);
  if (begins_with(content, "PK\x03\x04") || begins_with(content, "PK\x05\x06")) {
    refuse_format(file, format_of_archive(content));
  }
  if (is_utf16(content)) refuse(file, "this seems to be a text in UTF-16; save it as UTF-8");
  const auto text = without_leading_blanks(content);
  if (text.empty()) refuse(file, "this is empty");
  if (contains(text, "\0"sv)) refuse_format(file, "a binary file");
  if (is_xml(text)) refuse_format(file, format_of_xml(text));
  if (contains(text.substr(0, 1024), "ISO-10303-21;")) {
    refuse_format(file, contains(text.substr(0, 1 << 16), "IFC") ? "an IFC model" : "a STEP file");
  }
}

void drop_byte_order_mark(std::string& text) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (begins_with(text, mark)) text.erase(0, mark.size());
}

bool starts_as_json(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && (text[first] == '{' || text[first] == '[');
}

/// What a JSON document is that no reader knows.
const char* kind_of(const JsonNode& document) {
  if (is_honeybee(document)) return "JSON of honeybee";
  if (is_openstudio_standards(document)) return "JSON of the OpenStudio standards";
  return "JSON of another kind";
}

/// What a text is that no reader knows.
const char* kind_of(std::string_view text) {
  if (begins_with(text, "kind,name,position,material,")) {
    return "a table that 'veldra export --format csv' has written";
  }
  return is_table(text) ? "a table (CSV)" : "plain text";
}

}  // namespace

FileContent content_from(const std::string& file, std::string bytes) {
  drop_byte_order_mark(bytes);
  require_readable(bytes, file);
  if (starts_as_json(bytes)) return {file, "", parse_json(bytes, file)};
  return {file, is_utf8(bytes) ? std::move(bytes) : from_latin1(bytes), std::nullopt};
}

void refuse_unknown(const FileContent& content) {
  refuse_format(content.file,
                content.document ? kind_of(*content.document) : kind_of(content.text));
}

bool is_foreign(const JsonNode& document) {
  return is_honeybee(document) || is_openstudio_standards(document);
}

}  // namespace veldra::kit
