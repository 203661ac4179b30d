// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/fields/tables.hpp"

#include <veldra/kit/kinds.hpp>

namespace veldra::kit {

namespace {

/// Of an object that is nothing but its name.
template <class T>
Table<T> name_alone() {
  Table<T> table;
  add_id(table);
  add_name(table);
  return table;
}

/// The kind that a property is for has a name, or is a number.
Value owner_kind(const CustomProperty& property) {
  const ObjectType kind = property.object_type();
  const bool named = kind == ObjectType::Material || kind == ObjectType::Composition;
  return named ? Value(singular_of(kind)) : Value(static_cast<int>(kind));
}

}  // namespace

template <>
Table<Tag> table_of<Tag>(const Context&) {
  Table<Tag> table;
  add_id(table);
  add_fixed_name(table);
  return table;
}

template <>
Table<Layer> table_of<Layer>(const Context&) {
  return name_alone<Layer>();
}

template <>
Table<MaterialType> table_of<MaterialType>(const Context&) {
  return name_alone<MaterialType>();
}

template <>
Table<CustomProperty> table_of<CustomProperty>(const Context&) {
  auto table = name_alone<CustomProperty>();
  auto description = described("object_type", Value::Kind::Text);
  description.label = "for";
  description.required = true;
  description.fixed_because = "it is given once and for all";
  table.add(description, owner_kind);
  return table;
}

}  // namespace veldra::kit
