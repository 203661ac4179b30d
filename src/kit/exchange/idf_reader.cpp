// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/idf_fields.hpp"
#include "kit/exchange/problem.hpp"
#include "kit/exchange/writers.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <set>
#include <sstream>
#include <string_view>

namespace veldra::kit {

namespace {

struct IdfObject {
  std::vector<std::string> fields;  ///< the class first
  unsigned line = 0;                ///< of the class
  bool whole = true;                ///< the text did not end within it
  bool too_large = false;           ///< what is beyond the limits is not among the fields
};

/// More than any object needs; what has more was made to fill the memory.
constexpr std::size_t most_fields = 100000;
constexpr std::size_t longest_field = 1 << 20;
constexpr std::size_t most_fields_of_material = 1000;

/// Takes a text apart into objects.
class IdfScanner {
 public:
  explicit IdfScanner(std::string_view text) : rest_(text) {}

  /// The next object; returns false at the end of the text.
  bool next(IdfObject& object) {
    object = IdfObject();
    std::string field;
    while (!rest_.empty()) {
      const char character = take();
      if (character == '!') {
        skip_comment();
      } else if (character == ',' || character == ';') {
        object.too_large = object.too_large || object.fields.size() == most_fields;
        if (!object.too_large) object.fields.push_back(trimmed(field));
        field.clear();
        if (character == ';') return true;
      } else {
        if (object.line == 0 && !is_blank(character)) object.line = line_;
        object.too_large = object.too_large || field.size() == longest_field;
        if (!object.too_large) field += character;
      }
    }
    object.whole = false;
    object.fields.push_back(trimmed(field));
    return object.line != 0;
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
  for (std::size_t i = 0; i + 2 < object.fields.size(); ++i) {
    const std::string& value = object.fields[i + 2];
    if (value.empty()) continue;
    const bool known = i < described.fields.size();
    if (known) material.values[described.fields[i].key] = value;
    if (known && described.fields[i].kind != FieldKind::Dropped) continue;
    material.not_kept.emplace_back(known ? described.fields[i].key : fmt::format("field {}", i + 2),
                                   value);
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
  const std::size_t first = first_layer(object, described);
  for (std::size_t i = 2; i < object.fields.size(); ++i) {
    if (object.fields[i].empty()) continue;
    if (i < first) {
      construction.not_kept.emplace_back(fields_of_heat_source[i - 2], object.fields[i]);
    } else {
      add_layer(construction, i - first + 1, object.fields[i]);
    }
  }
  return construction;
}

/// Classes without a colon in their names that a model without materials may have.
bool is_usual_class(const std::string& name) {
  static const std::set<std::string> names{"version",
                                           "building",
                                           "zone",
                                           "simulationcontrol",
                                           "timestep",
                                           "runperiod",
                                           "scheduletypelimits",
                                           "globalgeometryrules",
                                           "people",
                                           "lights"};
  return names.count(lower_case(name)) > 0;
}

/// Whether an object is one that nothing but this format has. A field that goes over the end of a
/// line shows that the commas are those of something else, such as a table.
bool is_evidence(const IdfObject& object) {
  const auto& fields = object.fields;
  const std::string& name = fields.front();
  if (fields.size() < 2 || std::any_of(fields.begin(), fields.end(), [](const auto& field) {
        return field.find_first_of("\r\n") != std::string::npos;
      })) {
    return false;
  }
  const bool colons = name.find(':') != std::string::npos && can_be_class(name);
  return is_known_class(name) || is_usual_class(name) || colons;
}

/// Old classes are of several words, which begin with capitals.
bool may_be_class(const std::string& name) {
  if (name.find(' ') == std::string::npos) return can_be_class(name);
  std::istringstream words(name);
  for (std::string word; words >> word;) {
    if (!can_be_class(word) || word[0] < 'A' || word[0] > 'Z') return false;
  }
  return true;
}

/// So many objects tell what a text is; to go through all of a large one takes as long as to read
/// it.
constexpr std::size_t objects_to_tell = 1000;

/// Whether a text is of the format, maybe not whole: it has an object of a class of materials or
/// constructions, or of another one that the format is known by, and most of its objects are of
/// classes that can be, of which the first ones are looked at; or it has nothing but comments.
bool is_idf(const std::string& text) {
  IdfScanner scanner(text);
  IdfObject object;
  std::size_t objects = 0;
  std::size_t with_class = 0;
  bool evident = false;
  while ((!evident || objects < objects_to_tell) && scanner.next(object)) {
    if (object.fields.empty() || object.fields.front().empty()) continue;
    ++objects;
    if (may_be_class(object.fields.front())) ++with_class;
    evident = evident || is_evidence(object);
  }
  if (objects == 0) return trimmed(text).compare(0, 1, "!") == 0;
  return evident && with_class * 2 >= objects;
}

const std::string no_name;

void require_small(const IdfObject& object, const std::string& name, const std::string& file) {
  const auto most = is_known_class(name) ? most_fields_of_material : most_fields;
  if (!object.too_large && object.fields.size() <= most) return;
  fail_at(file, object.line,
          object.fields.size() >= most
              ? fmt::format("the object that begins here has more than {} fields", most)
              : "a field of the object that begins here is longer than 1 MiB");
}

SourceModel read_idf(const std::string& text, const std::string& file) {
  SourceModel model;
  IdfScanner scanner(text);
  IdfObject object;
  while (scanner.next(object)) {
    if (!object.whole) {
      fail_at(file, object.line, "the file ends within the object that begins here");
    }
    const std::string& name = object.fields.empty() ? no_name : object.fields.front();
    require_small(object, name, file);
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

}  // namespace

FormatModule idf_module() {
  return {"IDF",
          {"idf"},
          [](const FileContent& content) {
            // A STEP file has semicolons, too, and takes long to be found out by its objects.
            return !content.document && !is_step(content.text) && is_idf(content.text);
          },
          [](FileContent content) -> std::shared_ptr<SourceContent> {
            return std::make_shared<ModelContent>(read_idf(content.text, content.file));
          },
          write_idf};
}

}  // namespace veldra::kit
