// SPDX-License-Identifier: GPL-2.0-or-later
#include "import/sources.hpp"

#include "files/reading.hpp"
#include "import/readers.hpp"
#include "text.hpp"

namespace veldra_tool {

namespace {

void drop_byte_order_mark(std::string& text) {
  constexpr const char* mark = "\xEF\xBB\xBF";
  if (text.compare(0, 3, mark) == 0) text.erase(0, 3);
}

bool starts_as_json(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  return first != std::string::npos && (text[first] == '{' || text[first] == '[');
}

}  // namespace

Source::Source(const std::string& file) : file_(file) {
  std::string text = content_of(file);
  drop_byte_order_mark(text);
  require_readable(text, file);
  if (!starts_as_json(text)) {
    if (!is_utf8(text)) text = from_latin1(text);
    require_idf(text, file);
    model_ = read_idf(text, file);
    return;
  }
  document_ = parse_json(text, file);
  format_ = format_of(document_, file);
  if (format_ != Format::EpJson) return;
  model_ = read_epjson(document_, file);
  document_ = JsonNode();
}

bool Source::has_objects() const {
  return format_ == Format::Catalogue ? has_catalogue_objects(document_)
                                      : !model_.materials.empty() || !model_.constructions.empty();
}

std::optional<veldra::Unit> Source::unit() const {
  if (format_ != Format::Catalogue) return std::nullopt;
  return catalogue_unit(document_, file_);
}

void Source::add_to(ImportSet& set, veldra::Unit unit, SourceReport& report) const {
  if (format_ != Format::Catalogue) return set.add(model_, report);
  set.add(read_catalogue(document_, file_, unit, set.shared()), report);
}

}  // namespace veldra_tool
