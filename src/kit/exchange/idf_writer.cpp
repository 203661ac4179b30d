// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/idf_fields.hpp"
#include "kit/exchange/model_writer.hpp"
#include "kit/exchange/writers.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <vector>

namespace veldra::kit {

namespace {

/// No field can have one of these, as there are neither quotes nor escapes.
constexpr std::string_view steering = ",;!";

bool is_steering(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7f || steering.find(character) != std::string_view::npos;
}

bool can_be_field(const std::string& text) {
  return !text.empty() && trimmed(text) == text &&
         std::none_of(text.begin(), text.end(), is_steering);
}

std::string name_in_idf(const std::string& name) {
  std::string result = name;
  std::replace_if(result.begin(), result.end(), is_steering, '_');
  return trimmed(result);
}

/// Fields behind those that are known have numbers, counted from the name as 1.
std::size_t number_of_unknown(const std::string& key) {
  constexpr std::string_view beginning = "field ";
  constexpr std::size_t most = 256;
  if (key.compare(0, beginning.size(), beginning) != 0) return 0;
  std::size_t number = 0;
  const char* end = key.data() + key.size();
  const auto result = std::from_chars(key.data() + beginning.size(), end, number);
  return result.ec == std::errc() && result.ptr == end && number <= most ? number : 0;
}

/// The place of a field of a class, counted from the first behind the name; as many as there can
/// be for none.
std::size_t place_of(const MaterialClass& described, const std::string& key) {
  const auto& fields = described.fields;
  const auto known = std::find_if(fields.begin(), fields.end(),
                                  [&](const auto& field) { return field.key == key; });
  if (known != fields.end()) return static_cast<std::size_t>(known - fields.begin());
  const auto number = number_of_unknown(key);
  return number >= fields.size() + 2 ? number - 2 : std::string::npos;
}

bool holds(const MaterialClass& described, const std::string& key, const std::string& value) {
  return can_be_field(value) && place_of(described, key) != std::string::npos;
}

/// The place of a field before the layers.
std::size_t place_of_heat_source(const std::string& key) {
  const auto found =
      std::find(std::begin(fields_of_heat_source), std::end(fields_of_heat_source), key);
  return static_cast<std::size_t>(found - std::begin(fields_of_heat_source));
}

/// They are numbers, by which they are told from layers.
bool holds_of_construction(const ConstructionClass& described, const std::string& key,
                           const std::string& value) {
  return described.kind == ConstructionKind::InternalSource && can_be_field(value) &&
         number_in(value) && place_of_heat_source(key) < std::size(fields_of_heat_source);
}

/// A field of an object, and what it is called.
struct WrittenField {
  std::string value;
  std::string key;
};

std::string number_of_gases(const SourceMaterial& material) {
  int count = 0;
  while (material.values.count(fmt::format("gas_{}_type", count + 1)) > 0) ++count;
  return count > 0 ? fmt::format("{}", count) : std::string();
}

std::vector<WrittenField> fields_of(const SourceMaterial& material) {
  std::vector<WrittenField> fields{{material.name, "name"}};
  for (const auto& field : material.described->fields) {
    const auto value = material.values.find(field.key);
    fields.push_back({value != material.values.end() ? value->second : std::string(), field.key});
    if (field.kind == FieldKind::Implied) fields.back().value = number_of_gases(material);
  }
  for (const auto& [key, value] : material.not_kept) {
    const auto place = place_of(*material.described, key) + 1;
    while (fields.size() <= place)
      fields.push_back({"", fmt::format("field {}", fields.size() + 1)});
    fields[place].value = value;
  }
  return fields;
}

std::vector<WrittenField> fields_of(const SourceConstruction& construction) {
  std::vector<WrittenField> fields{{construction.name, "name"}};
  if (construction.described->kind == ConstructionKind::InternalSource) {
    for (const char* key : fields_of_heat_source) fields.push_back({"", key});
    for (const auto& [key, value] : construction.not_kept) {
      fields[place_of_heat_source(key) + 1].value = value;
    }
  }
  for (std::size_t i = 0; i < construction.layers.size(); ++i) {
    const auto key = i == 0 ? std::string("outside_layer") : fmt::format("layer_{}", i + 1);
    fields.push_back({construction.layers[i], key});
  }
  return fields;
}

void write_object(const std::string& name, std::vector<WrittenField> fields, const TextSink& sink) {
  while (fields.size() > 1 && fields.back().value.empty()) fields.pop_back();
  std::string text = "\n" + name + ",\n";
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const char end = i + 1 < fields.size() ? ',' : ';';
    text += fmt::format("  {}{}  !- {}\n", fields[i].value, end, fields[i].key);
  }
  sink(text);
}

}  // namespace

WriteReport write_idf(const Library& library, const TextSink& sink, const WriteRules& rules) {
  static const ModelFormat format{"IDF", material_classes(), true,  false,
                                  10,    name_in_idf,        holds, holds_of_construction};
  sink("Version,9.4;\n");
  const ModelSink objects{[&](const SourceMaterial& material) {
                            write_object(material.described->name, fields_of(material), sink);
                          },
                          [&](const SourceConstruction& construction) {
                            write_object(construction.described->name, fields_of(construction),
                                         sink);
                          }};
  return write_model(library, format, objects, rules.progress);
}

}  // namespace veldra::kit
