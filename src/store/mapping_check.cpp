// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/kinds.hpp"
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

template <class... Values>
constexpr std::size_t described(DescribedBy<Values...>) {
  std::size_t result = 0;
  const std::size_t counts[] = {0, sum(Values::members())...};
  for (const std::size_t count : counts) result += count;
  return result;
}

// Every object has an id and a name.
#define VELDRA_CHECK(T)                                                    \
  static_assert(MappingOf<T>::column_count == described(PartsOf<T>()) + 2, \
                "a member of " #T " is described and not mapped, or the reverse");
VELDRA_FOR_EACH_KIND(VELDRA_CHECK)

// An asset names its kind too; the tables of the kinds have its id and their own part.
static_assert(MappingOf<Asset>::column_count == described(PartsOf<Asset>()) + 3, "an asset");
static_assert(MappingOf<StructuralAsset>::column_count == sum(StructuralAssetValues::members()) + 1,
              "a structural asset");
static_assert(MappingOf<ThermalAsset>::column_count == sum(ThermalAssetValues::members()) + 1,
              "a thermal asset");

/// Whether the mapping asks the session for the objects of a kind. What others refer to must be
/// asked for: there, ids that no object can have are refused.
template <class T>
constexpr bool has_session() {
  using Traits = odb::access::object_traits<T>;
  using None = odb::no_op_pointer_cache_traits<typename Traits::pointer_type>;
  return !std::is_same<typename Traits::pointer_cache_traits, None>::value;
}

static_assert(has_session<Material>() && has_session<MaterialType>() && has_session<Layer>() &&
                  has_session<CustomProperty>() && has_session<Tag>() && has_session<Asset>(),
              "what others refer to is mapped with a session");
static_assert(!has_session<Composition>(), "nothing refers to a composition");

// A layer describes no members. Who adds one compares it in `Composition::Layer::operator==`, and
// treats a reference or a length in the roles of layers: references.hpp, saver.cpp, file_check.cpp
// and unit_conversion.hpp.
static_assert(ColumnsOfValue<Composition::Layer>::value == 3, "a layer of a composition");

}  // namespace

}  // namespace veldra
