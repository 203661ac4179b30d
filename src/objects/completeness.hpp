// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_COMPLETENESS_HPP
#define VELDRA_OBJECTS_COMPLETENESS_HPP

#include "objects/description.hpp"
#include "objects/record.hpp"

#include <cstddef>

// Whether a record describes all of its members. They are counted by how many values an aggregate
// can be initialized with, and no two entries of a description may name the same one.

namespace veldra {

struct Anything {
  template <class T>
  operator T() const;
};

template <std::size_t>
using AnythingAt = Anything;

template <class T, class Indices, class = void>
struct TakesValues : std::false_type {};

template <class T, std::size_t... Index>
struct TakesValues<T, std::index_sequence<Index...>, decltype(void(T{AnythingAt<Index>{}...}))>
    : std::true_type {};

/// How many members the aggregate `T` has, up to `most`.
template <class T, std::size_t most,
          bool fits = TakesValues<T, std::make_index_sequence<most>>::value>
struct MemberCount : std::integral_constant<std::size_t, most> {};

template <class T, std::size_t most>
struct MemberCount<T, most, false> : MemberCount<T, most - 1> {};

template <class A, class B>
constexpr bool is_same_member(A, B) {
  return false;
}

template <class RoleA, class ComparisonA, class RoleB, class ComparisonB, class Record, class Field>
constexpr bool is_same_member(Member<RoleA, ComparisonA, Record, Field> a,
                              Member<RoleB, ComparisonB, Record, Field> b) {
  return a.field == b.field;
}

template <class Members, class One, std::size_t... Index>
constexpr std::size_t occurrences(const Members& members, const One& one,
                                  std::index_sequence<Index...>) {
  std::size_t count = 0;
  const bool same[] = {false, is_same_member(std::get<Index>(members), one)...};
  for (const bool is_one : same) count += is_one ? 1 : 0;
  return count;
}

template <class Members, std::size_t... Index>
constexpr bool names_each_once(const Members& members, std::index_sequence<Index...> all) {
  const std::size_t counts[] = {1, occurrences(members, std::get<Index>(members), all)...};
  for (const std::size_t count : counts) {
    if (count != 1) return false;
  }
  return true;
}

/// Whether the record `Values` describes each of its members, and each once.
template <class Values>
constexpr bool is_complete() {
  constexpr std::size_t described = std::tuple_size<decltype(Values::members())>::value;
  constexpr std::size_t most = 40;
  static_assert(described < most, "members are counted up to this number");
  return described == MemberCount<Values, most>::value &&
         names_each_once(Values::members(), std::make_index_sequence<described>());
}

template <class Beginning, class Parts>
struct ExactRecord;

template <class Beginning, class... Values>
struct ExactRecord<Beginning, DescribedBy<Values...>> : Beginning, Values... {
  static constexpr bool is_described() {
    bool all = true;
    const bool parts[] = {true, is_complete<Values>()...};
    for (const bool part : parts) all = all && part;
    return all;
  }
};

/// Whether a record has no members besides those that its parts describe, all of them, and what all
/// objects have. (A record with a table of virtual functions is larger than its parts.)
template <class Record>
constexpr bool is_described() {
  using Exact = ExactRecord<typename Record::Beginning, typename Record::Parts>;
  return Exact::is_described() &&
         (std::is_polymorphic<Record>::value || sizeof(Record) == sizeof(Exact));
}

}  // namespace veldra

#endif
