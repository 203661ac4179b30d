// SPDX-License-Identifier: GPL-2.0-or-later
#include "kinds.hpp"

#include "failure.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct KindNames {
  veldra::ObjectType kind;
  const char* plural;
  const char* singular;
};

constexpr KindNames kind_names[] = {
    {veldra::ObjectType::Material, "materials", "material"},
    {veldra::ObjectType::Composition, "compositions", "composition"},
    {veldra::ObjectType::MaterialType, "types", "type"},
    {veldra::ObjectType::Layer, "layers", "layer"},
    {veldra::ObjectType::CustomProperty, "properties", "property"},
    {veldra::ObjectType::Tag, "tags", "tag"}};

const KindNames& names_of(veldra::ObjectType kind) {
  for (const KindNames& names : kind_names) {
    if (names.kind == kind) return names;
  }
  throw Failure(fmt::format("there is no kind {}", static_cast<int>(kind)));
}

}  // namespace

const std::vector<veldra::ObjectType>& all_kinds() {
  static const auto kinds = [] {
    std::vector<veldra::ObjectType> result;
    for (const KindNames& names : kind_names) result.push_back(names.kind);
    return result;
  }();
  return kinds;
}

const std::map<std::string, veldra::ObjectType>& kinds_by_name() {
  static const auto kinds = [] {
    std::map<std::string, veldra::ObjectType> result;
    for (const KindNames& names : kind_names) {
      result[names.plural] = names.kind;
      result[names.singular] = names.kind;
    }
    return result;
  }();
  return kinds;
}

std::string plural_of(veldra::ObjectType kind) { return names_of(kind).plural; }

std::string singular_of(veldra::ObjectType kind) {
  return kind == veldra::ObjectType::Asset ? "asset" : names_of(kind).singular;
}

std::string name_of(veldra::Composition::Type type) {
  switch (type) {
    case veldra::Composition::Type::Wall:
      return "wall";
    case veldra::Composition::Type::Floor:
      return "floor";
    case veldra::Composition::Type::Roof:
      return "roof";
    default:
      return "other";
  }
}

std::string name_of(veldra::Unit unit) { return unit == veldra::Unit::Inches ? "in" : "mm"; }

veldra::Composition::Type composition_type(const std::string& name) {
  using Type = veldra::Composition::Type;
  for (const Type type : {Type::Wall, Type::Floor, Type::Roof, Type::Other}) {
    if (name_of(type) == name) return type;
  }
  throw Failure(fmt::format(
      "there is no type of composition {}; there are wall, floor, roof, other", in_quotes(name)));
}

}  // namespace veldra_tool
