// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/exchange.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include "kit/exchange/json_objects.hpp"
#include "kit/exchange/objects_by_name.hpp"
#include "kit/exchange/writers.hpp"

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

namespace veldra::kit {

namespace {

/// A value as lines, all but the first behind so many blanks.
std::string lines_of(const Json& json, std::size_t indent) {
  const std::string text = without_controls_in_json(json.dump(2));
  if (indent == 0) return text;
  std::string result;
  for (const char character : text) {
    result += character;
    if (character == '\n') result.append(indent, ' ');
  }
  return result;
}

template <class T>
Json names_of(const Library& library) {
  std::vector<String> names;
  library.for_each<T>([&](const std::shared_ptr<T>& object) {
    names.push_back(object->name());
    return true;
  });
  std::sort(names.begin(), names.end());
  Json json = Json::array();
  for (const auto& name : names) json.push_back(name.utf8());
  return json;
}

/// Properties of one name are told apart by the kind of object that they are for.
Json properties_of(const Library& library) {
  std::vector<std::shared_ptr<CustomProperty>> properties;
  library.get(properties);
  const auto key = [](const CustomProperty& property) {
    return std::make_tuple(property.name(), property.object_type(), property.id());
  };
  std::sort(properties.begin(), properties.end(),
            [&](const auto& left, const auto& right) { return key(*left) < key(*right); });
  Json json = Json::array();
  for (const auto& property : properties) json.push_back(json_from(*property));
  return json;
}

Json settings_of(const Library& library) {
  Json json = Json::object();
  json["unit"] = name_of(library.unit());
  json["locale"] = library.locale().utf8();
  json["region"] = library.region().utf8();
  return json;
}

/// Writes the members of the whole, one after the other.
class Writer {
 public:
  Writer(const Library& library, const TextSink& sink, const Progress& progress)
      : library_(library), sink_(sink), progress_(progress) {}

  void write() {
    write_member("format", "veldra");
    write_member("version", 1);
    write_member("library", settings_of(library_));
    write_member("tags", names_of<Tag>(library_));
    write_member("layers", names_of<Layer>(library_));
    write_member("material_types", names_of<MaterialType>(library_));
    write_member("custom_properties", properties_of(library_));
    write_objects<Material>("materials");
    write_objects<Composition>("compositions");
    sink_("\n}\n");
  }

 private:
  void begin_member(const std::string& name) {
    sink_(std::exchange(first_, false) ? "{\n  \"" : ",\n  \"");
    sink_(name + "\": ");
  }

  void write_member(const std::string& name, const Json& value) {
    begin_member(name);
    sink_(lines_of(value, 2));
  }

  template <class T>
  void write_objects(const std::string& name) {
    begin_member(name);
    sink_("[");
    bool first = true;
    for_each_by_name<T>(library_, [&](const T& object, std::size_t) {
      sink_(std::exchange(first, false) ? "\n    " : ",\n    ");
      sink_(lines_of(json_from(object), 4));
      if (progress_) progress_();
    });
    sink_(first ? "]" : "\n  ]");
  }

  const Library& library_;
  const TextSink& sink_;
  const Progress& progress_;
  bool first_ = true;
};

}  // namespace

WriteReport write_catalogue(const Library& library, const TextSink& sink, const WriteRules& rules) {
  write_json(library, sink, rules.progress);
  WriteReport report;
  report.written["material"] = library.count<Material>();
  report.written["composition"] = library.count<Composition>();
  return report;
}

void write_json(const Library& library, const TextSink& sink, const Progress& progress) {
  Writer(library, sink, progress).write();
}

}  // namespace veldra::kit
