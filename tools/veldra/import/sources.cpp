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

Source::Source(const std::string& file) : file_(file), format_(Format::Idf) {
  text_ = content_of(file);
  drop_byte_order_mark(text_);
  if (!starts_as_json(text_)) {
    if (!is_utf8(text_)) text_ = from_latin1(text_);
    return;
  }
  document_ = parse_json(text_, file_);
  format_ = is_catalogue(document_) ? Format::Catalogue : Format::EpJson;
  text_.clear();
}

const char* Source::format() const {
  switch (format_) {
    case Format::Idf:
      return "IDF";
    case Format::EpJson:
      return "epJSON";
    default:
      return "veldra";
  }
}

std::optional<veldra::Unit> Source::unit() const {
  if (format_ != Format::Catalogue) return std::nullopt;
  return catalogue_unit(document_, file_);
}

void Source::add_to(ImportSet& set, veldra::Unit unit, SourceReport& report) const {
  switch (format_) {
    case Format::Idf:
      return set.add(read_idf(text_, file_), report);
    case Format::EpJson:
      return set.add(read_epjson(document_, file_), report);
    default:
      return set.add(read_catalogue(document_, file_, unit, set.shared()), report);
  }
}

}  // namespace veldra_tool
