// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_DESCRIPTION_HPP
#define VELDRA_OBJECTS_DESCRIPTION_HPP

#include <veldra/composition.hpp>

#include <odb/nullable.hxx>

#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

// The language in which the record of each kind describes its members, once. What is the same for
// all of them is derived from it: equality, linking, replicas, what is saved before an object, and
// conversion of units. An operation has an overload for each role and none for the rest, so that a
// role that it does not know stops the build.

namespace veldra {

// What a member is.

/// No length, and refers to nothing.
struct Plain {};
/// One or several lengths in the unit of the library.
struct Length {};
/// A number in a unit of the host's, which is never converted.
struct Number {};
/// Another object, or none.
struct Reference {};
/// Another object, which saving makes when there is none.
struct NeededReference {};
/// An asset, which is read but never saved.
struct UnsavedReference {};
/// Several other objects, in an order.
struct References {};
/// Values by custom properties, which are other objects.
struct ValuesByProperty {};
/// Layers, each with a material, which is another object, and a thickness, which is a length.
struct LayersOfMaterials {};

// How two objects are compared in a member.

struct ByValue {};
/// Deliberate: only whether there is a value counts.
struct ByPresence {};
/// Of what is referred to, the name counts.
struct ByName {};
/// Of what is referred to, all counts.
struct ByContents {};

template <class Role, class Comparison, class Record, class Field>
struct Member {
  Field Record::*field;
};

/// For operations on members of several roles, which must name each of them.
template <class... Roles>
struct OneOf : Roles... {};

template <class Role, class... Roles>
using IfOneOf = std::enable_if_t<std::is_base_of<Role, OneOf<Roles...>>::value>;

/// What stands in a description.
namespace describe {

template <class Field>
struct IsPlain : std::integral_constant<bool, std::is_same<Field, bool>::value ||
                                                  std::is_same<Field, unsigned>::value ||
                                                  std::is_enum<Field>::value> {};
template <>
struct IsPlain<String> : std::true_type {};
template <>
struct IsPlain<Color> : std::true_type {};
template <>
struct IsPlain<Pattern> : std::true_type {};
template <>
struct IsPlain<Point2d> : std::true_type {};
template <class Field>
struct IsPlain<odb::nullable<Field>> : IsPlain<Field> {};

template <class Field>
struct IsLength : std::is_same<Field, double> {};
template <>
struct IsLength<odb::nullable<double>> : std::true_type {};
template <>
struct IsLength<std::set<double>> : std::true_type {};

template <class Comparison = ByValue, class Record, class Field>
constexpr Member<Plain, Comparison, Record, Field> value(Field Record::*field) {
  static_assert(IsPlain<Field>::value, "say whether it is a length, a number or a reference");
  return {field};
}

template <class Comparison = ByValue, class Record, class Field>
constexpr Member<Length, Comparison, Record, Field> length(Field Record::*field) {
  static_assert(IsLength<Field>::value, "a length is a number, an absent one, or several");
  return {field};
}

template <class Record>
constexpr Member<Number, ByValue, Record, double> number(double Record::*field) {
  return {field};
}

template <class Record, class T>
constexpr Member<Reference, ByName, Record, std::shared_ptr<const T>> reference(
    std::shared_ptr<const T> Record::*field) {
  return {field};
}

template <class Record, class T>
constexpr Member<NeededReference, ByName, Record, std::shared_ptr<const T>> needed_reference(
    std::shared_ptr<const T> Record::*field) {
  return {field};
}

template <class Record, class T>
constexpr Member<UnsavedReference, ByContents, Record, std::shared_ptr<T>> asset(
    std::shared_ptr<T> Record::*field) {
  static_assert(std::is_base_of<Asset, T>::value, "assets are changed by those who share them");
  return {field};
}

template <class Record, class T>
constexpr Member<References, ByName, Record, std::vector<std::shared_ptr<T>>> references(
    std::vector<std::shared_ptr<T>> Record::*field) {
  return {field};
}

template <class Record>
constexpr Member<ValuesByProperty, ByContents, Record, std::map<CustomPropertyKey, String>>
values_by_property(std::map<CustomPropertyKey, String> Record::*field) {
  return {field};
}

template <class Record>
constexpr Member<LayersOfMaterials, ByContents, Record, Composition::Layers> layers_of_materials(
    Composition::Layers Record::*field) {
  return {field};
}

}  // namespace describe

/// What the members of a record are described by: one part, or several where kinds share one.
template <class... Values>
struct DescribedBy {};

template <class Members, class Visit, std::size_t... Index>
void visit_in_order(const Members& members, Visit& visit, std::index_sequence<Index...>) {
  const int in_order[] = {(visit(std::get<Index>(members)), 0)...};
  static_cast<void>(in_order);
}

/// Calls `visit` with each member that is described, in that order.
template <class Visit>
void for_each_member(DescribedBy<>, Visit&&) {}

template <class Values, class... Others, class Visit>
void for_each_member(DescribedBy<Values, Others...>, Visit&& visit) {
  constexpr auto members = Values::members();
  constexpr std::size_t count = std::tuple_size<decltype(Values::members())>::value;
  visit_in_order(members, visit, std::make_index_sequence<count>());
  for_each_member(DescribedBy<Others...>(), visit);
}

}  // namespace veldra

#endif
