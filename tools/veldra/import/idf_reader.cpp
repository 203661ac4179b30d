#include "failure.hpp"
#include "import/place.hpp"
#include "import/readers.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string_view>

namespace veldra_tool {

namespace {

struct IdfObject {
  std::vector<std::string> fields;  ///< the class first
  unsigned line = 0;                ///< of the class
};

/// Takes a text apart into objects.
class IdfScanner {
 public:
  IdfScanner(std::string_view text, const std::string& file) : rest_(text), file_(file) {}

  /// The next object; returns false at the end of the text.
  bool next(IdfObject& object) {
    object = IdfObject();
    std::string field;
    while (!rest_.empty()) {
      const char character = take();
      if (character == '!') {
        skip_comment();
      } else if (character == ',' || character == ';') {
        object.fields.push_back(trimmed(field));
        field.clear();
        if (character == ';') return true;
      } else {
        if (object.line == 0 && !is_blank(character)) object.line = line_;
        field += character;
      }
    }
    if (object.line == 0) return false;
    throw Failure(fmt::format("{}: the file ends within the object that begins here",
                              place(file_, object.line)));
  }

 private:
  static bool is_blank(char character) {
    return character == ' ' || character == '\t' || is_break(character);
  }
  static bool is_break(char character) { return character == '\n' || character == '\r'; }

  /// Counts LF, CRLF and a lone CR as one line break each.
  char take() {
    const char character = rest_.front();
    rest_.remove_prefix(1);
    const bool pair = character == '\r' && !rest_.empty() && rest_.front() == '\n';
    if (is_break(character) && !pair) ++line_;
    return character;
  }

  void skip_comment() {
    while (!rest_.empty() && !is_break(rest_.front())) rest_.remove_prefix(1);
  }

  std::string_view rest_;
  const std::string& file_;
  unsigned line_ = 1;
};

bool is_number(const std::string& text) {
  double number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end;
}

SourceMaterial material_from(const IdfObject& object, const MaterialClass& described) {
  SourceMaterial material;
  material.described = &described;
  material.line = object.line;
  if (object.fields.size() > 1) material.name = object.fields[1];
  for (std::size_t i = 0; i < described.fields.size() && i + 2 < object.fields.size(); ++i) {
    const std::string& value = object.fields[i + 2];
    if (!value.empty()) material.values[described.fields[i].key] = value;
  }
  return material;
}

/// Before the layers stand four numbers, and five in later versions; each may be left empty.
std::size_t first_layer(const IdfObject& object, const ConstructionClass& described) {
  if (described.kind != ConstructionKind::InternalSource) return 2;
  const auto& fields = object.fields;
  const bool fifth = fields.size() > 6 && (fields[6].empty() || is_number(fields[6]));
  return fifth ? 7 : 6;
}

SourceConstruction construction_from(const IdfObject& object, const ConstructionClass& described) {
  SourceConstruction construction;
  construction.described = &described;
  construction.line = object.line;
  if (object.fields.size() > 1) construction.name = object.fields[1];
  if (described.kind == ConstructionKind::WithoutLayers) return construction;
  for (std::size_t i = first_layer(object, described); i < object.fields.size(); ++i) {
    if (!object.fields[i].empty()) construction.layers.push_back(object.fields[i]);
  }
  return construction;
}

}  // namespace

SourceModel read_idf(const std::string& text, const std::string& file) {
  if (text.find('\0') != std::string::npos) {
    throw Failure(fmt::format("{}: this is neither a text nor JSON", in_quotes(file)));
  }
  SourceModel model;
  IdfScanner scanner(text, file);
  IdfObject object;
  while (scanner.next(object)) {
    const std::string& name = object.fields.front();
    if (const auto* material = material_class(name)) {
      model.materials.push_back(material_from(object, *material));
    } else if (const auto* construction = construction_class(name)) {
      model.constructions.push_back(construction_from(object, *construction));
    } else if (!name.empty()) {
      ++model.skipped[name];
    }
  }
  return model;
}

}  // namespace veldra_tool
