// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/kinds.hpp"
#include "store/mapping-odb.hpp"

#include <cstddef>
#include <memory>
#include <tuple>
#include <type_traits>
#include <vector>

// Whether the table of the kinds is in the order that operations on several kinds need: each before
// all that it refers to. Removal would find what it removes in use otherwise.

namespace veldra {

namespace {

enum Place : std::size_t {
#define VELDRA_PLACE(T) PlaceOf##T,
  VELDRA_FOR_EACH_KIND(VELDRA_PLACE)
#undef VELDRA_PLACE
      BehindAll
};

template <class T>
struct PlaceIn;

#define VELDRA_PLACE(T) \
  template <>           \
  struct PlaceIn<T> : std::integral_constant<std::size_t, PlaceOf##T> {};
VELDRA_FOR_EACH_KIND(VELDRA_PLACE)
#undef VELDRA_PLACE

// The place of the kind to which a member refers. Assets are no kind.

template <class Role, class How, class Values, class Field,
          class = IfOneOf<Role, Plain, Length, Number, UnsavedReference>>
constexpr std::size_t referred_to(Member<Role, How, Values, Field>) {
  return BehindAll;
}

template <class Role, class How, class Values, class T,
          class = IfOneOf<Role, Reference, NeededReference>>
constexpr std::size_t referred_to(Member<Role, How, Values, std::shared_ptr<const T>>) {
  return PlaceIn<T>::value;
}

template <class How, class Values, class T>
constexpr std::size_t referred_to(
    Member<References, How, Values, std::vector<std::shared_ptr<T>>>) {
  return PlaceIn<T>::value;
}

template <class How, class Values, class Field>
constexpr std::size_t referred_to(Member<ValuesByProperty, How, Values, Field>) {
  return PlaceIn<CustomProperty>::value;
}

template <class How, class Values, class Field>
constexpr std::size_t referred_to(Member<LayersOfMaterials, How, Values, Field>) {
  return PlaceIn<Material>::value;
}

template <class... Members>
constexpr std::size_t first_referred_to(const std::tuple<Members...>&) {
  std::size_t first = BehindAll;
  const std::size_t places[] = {BehindAll, referred_to(Members())...};
  for (const std::size_t each : places) first = each < first ? each : first;
  return first;
}

template <class... Values>
constexpr std::size_t first_referred_to(DescribedBy<Values...>) {
  std::size_t first = BehindAll;
  const std::size_t places[] = {BehindAll, first_referred_to(Values::members())...};
  for (const std::size_t each : places) first = each < first ? each : first;
  return first;
}

#define VELDRA_CHECK(T)                                       \
  static_assert(PlaceOf##T < first_referred_to(PartsOf<T>()), \
                #T " must stand before all that it refers to");
VELDRA_FOR_EACH_KIND(VELDRA_CHECK)
#undef VELDRA_CHECK

}  // namespace

}  // namespace veldra
