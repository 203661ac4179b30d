// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_FIELDS_TABLES_HPP
#define VELDRA_KIT_FIELDS_TABLES_HPP

#include "kit/fields/field.hpp"

#include <veldra/kit/text.hpp>

#include <memory>
#include <utility>
#include <vector>

namespace veldra::kit {

/// Where fields look for what they name.
struct Context {
  const Library* library = nullptr;  ///< null for fields without a library
  Unit unit = Unit::Millimetres;
};

/// All fields of a class in their order.
template <class T>
struct Table {
  std::vector<Field<T>> fields;
  std::ptrdiff_t custom_begin = 0;

  void add(FieldDescription description, typename Field<T>::Read read,
           typename Field<T>::Write write = {}) {
    fields.emplace_back(std::move(description), std::move(read), std::move(write));
  }
};

/// The key of the quantity of materials that a custom property of that name holds; empty for none.
std::string quantity_held_by(const std::string& property);

/// The table of a class; one specialization for each.
template <class T>
Table<T> table_of(const Context& context);

template <>
Table<Tag> table_of<Tag>(const Context& context);
template <>
Table<Layer> table_of<Layer>(const Context& context);
template <>
Table<MaterialType> table_of<MaterialType>(const Context& context);
template <>
Table<CustomProperty> table_of<CustomProperty>(const Context& context);
template <>
Table<Material> table_of<Material>(const Context& context);
template <>
Table<Composition> table_of<Composition>(const Context& context);

/// A field of the object itself, with its key, blanks for underscores, as its label.
FieldDescription described(const std::string& key, Value::Kind kind, const Value& initial = {});

/// The functions of materials and layers that have a name; other numbers are the host's.
std::vector<std::pair<std::string, int>> function_words();

/// One that is computed.
FieldDescription derived(const std::string& key, const std::string& label, Value::Kind kind);

/// The description of a field that refers to objects of a class by their names.
template <class Named>
FieldDescription referring(FieldDescription description, const std::string& what,
                           const Context& context) {
  description.refers_to = what;
  if (context.library == nullptr) return description;
  description.names = [library = context.library] {
    std::vector<std::string> names;
    library->for_each<Named>([&](const std::shared_ptr<Named>& each) {
      names.push_back(each->name().utf8());
      return true;
    });
    return names;
  };
  return description;
}

/// A whole number within the limits of a type.
///
/// Throws `FieldError`: it is not within them.
int int_of(const FieldDescription& field, const Value& value);
unsigned index_of(const FieldDescription& field, const Value& value);

template <class Owner>
Value name_of_reference(const std::shared_ptr<Owner>& referred) {
  return referred ? Value(referred->name().utf8()) : Value();
}

// Fields that several classes have.

template <class T>
void add_id(Table<T>& table) {
  table.add(derived("id", "id", Value::Kind::WholeNumber),
            [](const T& object) { return Value(object.id()); });
}

template <class T>
void add_text(Table<T>& table, FieldDescription description,
              const String& (T::*get)() const noexcept, void (T::*set)(const String&)) {
  table.add(
      std::move(description), [get](const T& object) { return Value((object.*get)().utf8()); },
      [set](T& object, const Value& value) {
        (object.*set)(library_text(value.as<std::string>()));
      });
}

FieldDescription described_name();

/// Of objects that keep the name with which they were made.
template <class T>
void add_fixed_name(Table<T>& table) {
  auto description = described_name();
  description.fixed_because = "it is given once and for all";
  table.add(description, [](const T& object) { return Value(object.name().utf8()); });
}

template <class T>
void add_name(Table<T>& table) {
  table.add(
      described_name(), [](const T& object) { return Value(object.name().utf8()); },
      [](T& object, const Value& value) { object.name(library_text(value.as<std::string>())); });
}

template <class T>
Value names_of_tags(const T& object) {
  Value::Texts names;
  for (const auto& tag : object.tags()) names.push_back(tag->name().utf8());
  return names;
}

template <class T>
void add_tags(Table<T>& table, const Context& context) {
  auto description = described("tags", Value::Kind::Texts, Value::Texts());
  description.aliases = {"tag"};
  table.add(referring<Tag>(description, "tag", context), names_of_tags<T>,
            [](T& object, const Value& value) {
              std::vector<std::shared_ptr<Tag>> tags;
              for (const auto& name : value.as<Value::Texts>()) {
                tags.push_back(Tag::create(library_text(name)));
              }
              object.tags(toModify) = std::move(tags);
            });
}

/// A drawing layer.
template <class T>
void add_layer(Table<T>& table, const std::string& key,
               const std::shared_ptr<const Layer>& (T::*get)() const noexcept,
               void (T::*set)(const std::shared_ptr<const Layer>&), const Context& context) {
  table.add(
      referring<Layer>(described(key, Value::Kind::Text), "drawing layer", context),
      [get](const T& object) { return name_of_reference((object.*get)()); },
      [set](T& object, const Value& value) {
        const auto layer =
            value.is_nothing() ? nullptr : Layer::create(library_text(value.as<std::string>()));
        (object.*set)(layer);
      });
}

/// The custom properties that objects of a kind can have.
std::vector<std::shared_ptr<const CustomProperty>> properties_for(ObjectType kind,
                                                                  const Context& context);

FieldDescription described(const CustomProperty& property);

template <class T>
Value custom_value(const T& object, const std::shared_ptr<const CustomProperty>& property) {
  const auto found = object.custom_values().find(CustomPropertyKey(property));
  if (found == object.custom_values().end()) return {};
  if (found->first->object_type() != property->object_type()) return {};
  return found->second.utf8();
}

template <class T>
void set_custom_value(T& object, const std::shared_ptr<const CustomProperty>& property,
                      const Value& value) {
  if (value.is_nothing()) return object.clear_custom_value(property);
  const auto text = library_text(value.as<std::string>());
  // A value of that name would keep its property, which may be one for all kinds.
  object.clear_custom_value(property->name());
  object.custom_value(property, text);
}

template <class T>
void add_custom_values(Table<T>& table, const Context& context) {
  table.custom_begin = static_cast<std::ptrdiff_t>(table.fields.size());
  for (const auto& property : properties_for(ObjectTraits<T>::type, context)) {
    table.add(
        described(*property),
        [property](const T& object) { return custom_value(object, property); },
        [property](T& object, const Value& value) { set_custom_value(object, property, value); });
  }
}

}  // namespace veldra::kit

#endif
