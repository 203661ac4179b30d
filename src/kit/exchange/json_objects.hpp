// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_JSON_OBJECTS_HPP
#define VELDRA_KIT_EXCHANGE_JSON_OBJECTS_HPP

#include <veldra/kit/fields.hpp>
#include <veldra/kit/value.hpp>

#include <nlohmann/json.hpp>

#include <type_traits>

namespace veldra::kit {

/// JSON whose members stay in the order in which they were added.
using Json = nlohmann::ordered_json;

/// The value of a field; null for nothing.
Json json_from(const Value& value);

/// Values of properties for all kinds of objects stand apart, because their properties are others
/// than those of the same names for one kind.
template <class Owner>
void add_custom_values(Json& json, const Owner& object) {
  for (const auto& [property, value] : object.custom_values()) {
    const bool common = property->object_type() == ObjectType{};
    json[common ? "common_custom_values" : "custom_values"][property->name().utf8()] = value.utf8();
  }
}

/// What an object stores, each field that is not as in a new object. The custom values are those of
/// the object, whichever properties a library has.
template <class T>
Json json_from(const T& object) {
  const auto& fields = built_in_fields<T>();
  Json json = Json::object();
  for (auto field = fields.begin(); field != fields.end(); ++field) {
    if constexpr (std::is_base_of_v<CustomValued<T>, T>) {
      if (field == fields.custom_begin()) add_custom_values(json, object);
    }
    if (field->origin != Origin::Stored && field->origin != Origin::Asset) continue;
    const auto value = field->get(object);
    if (value.is_nothing() || value == field->initial) continue;
    Json& member = field->group.empty() ? json : json[field->group];
    member[field->key] = json_from(value);
  }
  return json;
}

}  // namespace veldra::kit

#endif
