// SPDX-License-Identifier: GPL-2.0-or-later
#include "object_arguments.hpp"

#include "arguments.hpp"
#include "failure.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "process/interruption.hpp"

#include <fmt/format.h>

#include <iterator>
#include <map>

namespace veldra_tool {

namespace {

using Kind = std::map<std::string, veldra::ObjectType>::const_iterator;

/// In whatever case; the end where it is none.
Kind kind_in(const std::string& text) { return kinds_by_name().find(kit::lower_case(text)); }

bool is_kind(const std::string& text) { return kind_in(text) != kinds_by_name().end(); }

/// "FIELD=VALUE", unless it says that it is a name.
bool is_assignment(const std::string& text) {
  return naming_of(text).may_be_id && text.find('=') != std::string::npos;
}

bool is_nothing_else(const std::string&) { return false; }

/// Takes from texts the objects that they begin with: each as KIND:OBJECT, or behind its kind, as
/// far as a text that `ends` them.
std::vector<NamedObject> take_objects(std::vector<std::string>& texts,
                                      bool (*ends)(const std::string&)) {
  std::vector<NamedObject> objects;
  auto text = texts.begin();
  while (text != texts.end()) {
    if (names_object(*text)) {
      objects.push_back(named_object(*text++));
      continue;
    }
    const auto next = std::next(text);
    if (!is_kind(*text) || next == texts.end() || ends(*next)) break;
    const auto kind = kind_in(*text)->second;
    text = next;
    do {
      objects.push_back({kind, *text++});
    } while (text != texts.end() && !ends(*text) && !is_kind(*text) && !names_object(*text));
  }
  texts.erase(texts.begin(), text);
  return objects;
}

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
  auto rest = texts;
  auto objects = take_objects(rest, is_nothing_else);
  if (!rest.empty()) named_object(rest.front());
  return objects;
}

std::string objects_help() {
  return fmt::format("each as KIND:OBJECT, or KIND and the objects behind it; an object is {}",
                     naming_help);
}

std::vector<NamedObject> ObjectsOfKind::named() const {
  if (!names_object(kind) && objects.empty()) throw CLI::RequiredError("OBJECT");
  std::vector<std::string> texts{kind};
  texts.insert(texts.end(), objects.begin(), objects.end());
  return named_objects(texts);
}

NamedObject ObjectsOfKind::single() const {
  const auto all = named();
  if (all.size() == 1) return all.front();
  throw CLI::ValidationError("OBJECT",
                             fmt::format("{} is one argument too many", in_quotes(objects.back())));
}

void add_kind_of_object(CLI::App& command, std::string& kind) {
  const auto check = [](const std::string& text) {
    if (is_kind(text) || names_object(text)) return std::string();
    return fmt::format("{} is none of {}", in_quotes(text.substr(0, text.find(':'))),
                       kind_choices());
  };
  command
      .add_option("KIND", kind,
                  fmt::format("The kind of objects: {}; or KIND:OBJECT, such as composition:Roof",
                              kind_choices()))
      ->required()
      ->check(CLI::Validator(check, "", kind_choices()))
      ->type_name("");
}

void add_objects_of_kind(CLI::App& command, ObjectsOfKind& objects, const std::string& what) {
  add_kind_of_object(command, objects.kind);
  command
      .add_option("OBJECT", objects.objects,
                  fmt::format("{}: {}; left out where KIND says it", what, naming_help))
      ->type_name("");
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
  selection.objects = take_objects(texts, is_assignment);
  if (selection.objects.empty()) {
    if (!texts.empty() && texts.front().find('=') == std::string::npos) {
      named_object(texts.front());
    }
    throw CLI::ValidationError("OBJECT", "say which objects, as KIND:OBJECT or by --where");
  }
}

std::set<veldra::ObjectKey> keys_of(const veldra::Library& library, const Selection& selection) {
  return selection.filtered ? selected_keys(library, selection)
                            : keys_of(library, selection.objects);
}

}  // namespace veldra_tool
