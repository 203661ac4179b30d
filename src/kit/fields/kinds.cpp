// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/kinds.hpp>

#include "kit/text/quoted.hpp"

#include <fmt/format.h>

namespace veldra::kit {

namespace {

struct KindNames {
  ObjectType kind;
  const char* plural;
  const char* singular;
};

constexpr KindNames kind_names[] = {{ObjectType::Material, "materials", "material"},
                                    {ObjectType::Composition, "compositions", "composition"},
                                    {ObjectType::MaterialType, "types", "type"},
                                    {ObjectType::Layer, "layers", "layer"},
                                    {ObjectType::CustomProperty, "properties", "property"},
                                    {ObjectType::Tag, "tags", "tag"}};

const KindNames& names_of(ObjectType kind) {
  for (const KindNames& names : kind_names) {
    if (names.kind == kind) return names;
  }
  throw std::invalid_argument(fmt::format("there is no kind {}", static_cast<int>(kind)));
}

}  // namespace

const std::vector<ObjectType>& all_kinds() {
  static const auto kinds = [] {
    std::vector<ObjectType> result;
    for (const KindNames& names : kind_names) result.push_back(names.kind);
    return result;
  }();
  return kinds;
}

std::string plural_of(ObjectType kind) { return names_of(kind).plural; }

std::string singular_of(ObjectType kind) {
  return kind == ObjectType::Asset ? "asset" : names_of(kind).singular;
}

const std::vector<Composition::Type>& all_composition_types() {
  using Type = Composition::Type;
  static const std::vector<Type> types{Type::Wall, Type::Floor, Type::Roof, Type::Other};
  return types;
}

std::string name_of(Composition::Type type) {
  switch (type) {
    case Composition::Type::Wall:
      return "wall";
    case Composition::Type::Floor:
      return "floor";
    case Composition::Type::Roof:
      return "roof";
    default:
      return "other";
  }
}

Composition::Type composition_type(const std::string& name) {
  for (const auto type : all_composition_types()) {
    if (name_of(type) == name) return type;
  }
  throw Error(fmt::format("there is no type of composition {}; there are wall, floor, roof, other",
                          quoted(name)));
}

std::string name_of(Unit unit) { return unit == Unit::Inches ? "in" : "mm"; }

}  // namespace veldra::kit
