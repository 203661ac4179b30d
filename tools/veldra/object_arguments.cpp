// SPDX-License-Identifier: GPL-2.0-or-later
#include "object_arguments.hpp"

#include "arguments.hpp"
#include "failure.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "process/interruption.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

veldra::ObjectType kind_named(const std::string& name) {
  const auto kind = kinds_by_name().find(name);
  if (kind != kinds_by_name().end()) return kind->second;
  throw CLI::ValidationError("KIND", fmt::format("{} is none of {}, of which --where selects",
                                                 in_quotes(name), kind_choices()));
}

std::set<veldra::ObjectKey> selected_keys(const veldra::Library& library,
                                          const Selection& selection) {
  std::set<veldra::ObjectKey> keys;
  with_class_of(selection.kind, [&](auto of) {
    using T = typename decltype(of)::type;
    const kit::Fields<T> fields(library);
    const kit::Filter<T> wanted(selection.filter, fields);
    library.for_each<T>([&](const std::shared_ptr<T>& object) {
      stop_if_asked();
      if (wanted(*object)) keys.insert(veldra::ObjectKey(selection.kind, object->id()));
      return true;
    });
  });
  return keys;
}

}  // namespace

bool names_object(const std::string& text) {
  const auto colon = text.find(':');
  return colon != std::string::npos && kinds_by_name().count(text.substr(0, colon)) != 0;
}

NamedObject named_object(const std::string& text) {
  const auto colon = text.find(':');
  if (colon == std::string::npos) {
    throw CLI::ValidationError(
        "OBJECT", fmt::format("{} is not KIND:OBJECT, such as composition:Roof", in_quotes(text)));
  }
  if (!names_object(text)) {
    throw CLI::ValidationError(
        "KIND", fmt::format("{} is none of {}", in_quotes(text.substr(0, colon)), kind_choices()));
  }
  return {kinds_by_name().at(text.substr(0, colon)), text.substr(colon + 1)};
}

std::vector<NamedObject> named_objects(const std::vector<std::string>& texts) {
  std::vector<NamedObject> objects;
  objects.reserve(texts.size());
  for (const auto& text : texts) objects.push_back(named_object(text));
  return objects;
}

std::set<veldra::ObjectKey> keys_of(const veldra::Library& library,
                                    const std::vector<NamedObject>& objects) {
  std::set<veldra::ObjectKey> keys;
  for (const auto& each : objects) keys.insert(object_key(library, each.kind, each.object));
  return keys;
}

CLI::Option* add_selection(CLI::App& command, Selection& selection) {
  return command
      .add_option("--where", selection.filter,
                  "All objects of KIND for which this holds, such as \"type = Insulation "
                  "and manufacturer is empty\"; 'veldra help list' tells more")
      ->type_name("EXPR");
}

void take_selection(std::vector<std::string>& texts, Selection& selection) {
  if (selection.filtered) {
    if (texts.empty()) throw CLI::ValidationError("KIND", "say which kind --where selects from");
    selection.kind = kind_named(texts.front());
    texts.erase(texts.begin());
    return;
  }
  auto text = texts.begin();
  for (; text != texts.end() && names_object(*text); ++text) {
    selection.objects.push_back(named_object(*text));
  }
  if (selection.objects.empty()) {
    if (!texts.empty() && texts.front().find('=') == std::string::npos) {
      named_object(texts.front());
    }
    throw CLI::ValidationError("OBJECT", "say which objects, as KIND:OBJECT or by --where");
  }
  texts.erase(texts.begin(), text);
}

std::set<veldra::ObjectKey> keys_of(const veldra::Library& library, const Selection& selection) {
  return selection.filtered ? selected_keys(library, selection)
                            : keys_of(library, selection.objects);
}

}  // namespace veldra_tool
