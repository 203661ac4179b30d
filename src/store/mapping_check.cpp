#include "store/mapping-odb.hpp"

// Whether the mapping has columns for all that the records describe. A member without would be kept
// by no file.

namespace veldra {

namespace {

template <class T>
using MappingOf = odb::access::object_traits_impl<T, odb::id_sqlite>;

template <class Value>
using ColumnsOfValue = std::integral_constant<
    std::size_t, odb::access::composite_value_traits<Value, odb::id_sqlite>::column_count>;

/// How many columns a member of that type has in the table of its object.
template <class Field>
struct ColumnsOf : std::integral_constant<std::size_t, 1> {};
template <>
struct ColumnsOf<Color> : ColumnsOfValue<Color> {};
template <>
struct ColumnsOf<Pattern> : ColumnsOfValue<Pattern> {};
template <>
struct ColumnsOf<Point2d> : ColumnsOfValue<Point2d> {};

// Containers have tables of their own.
template <class Value>
struct ColumnsOf<std::vector<Value>> : std::integral_constant<std::size_t, 0> {};
template <class Value>
struct ColumnsOf<std::set<Value>> : std::integral_constant<std::size_t, 0> {};
template <class Key, class Value>
struct ColumnsOf<std::map<Key, Value>> : std::integral_constant<std::size_t, 0> {};

template <class Role, class How, class Values, class Field>
constexpr std::size_t columns(Member<Role, How, Values, Field>) {
  return ColumnsOf<Field>::value;
}

template <class... Members>
constexpr std::size_t sum(const std::tuple<Members...>&) {
  std::size_t result = 0;
  const std::size_t counts[] = {0, columns(Members())...};
  for (const std::size_t count : counts) result += count;
  return result;
}

/// Besides those of the members, a table has `others`.
template <class T, class Values>
constexpr bool is_mapped(std::size_t others) {
  return MappingOf<T>::column_count == sum(Values::members()) + others;
}

constexpr std::size_t id = 1;
constexpr std::size_t name = 1;
constexpr std::size_t kind_of_asset = 1;

static_assert(is_mapped<Material, MaterialValues>(id + name), "a member is not mapped");
static_assert(is_mapped<Composition, CompositionValues>(id + name), "a member is not mapped");
static_assert(is_mapped<CustomProperty, CustomPropertyValues>(id + name), "a member is not mapped");
static_assert(is_mapped<Asset, AssetValues>(id + name + kind_of_asset), "a member is not mapped");
static_assert(is_mapped<StructuralAsset, StructuralAssetValues>(id), "a member is not mapped");
static_assert(is_mapped<ThermalAsset, ThermalAssetValues>(id), "a member is not mapped");

}  // namespace

}  // namespace veldra
