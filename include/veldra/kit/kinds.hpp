// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_KINDS_HPP
#define VELDRA_KIT_KINDS_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/error.hpp>
#include <veldra/kit/export.hpp>

#include <stdexcept>
#include <string>
#include <vector>

namespace veldra::kit {

/// A class as a value, for functions that are called with one of the six.
template <class T>
struct ClassOf {
  using type = T;  ///< the class
};

/// Calls `work(ClassOf<T>{})` with the class of a kind.
///
///     with_class_of(kind, [&](auto of) { count<typename decltype(of)::type>(library); });
///
/// Throws:
/// - `std::invalid_argument`: the kind is none of the six; assets are none of their own.
/// - the exceptions of `work`.
template <class Work>
auto with_class_of(ObjectType kind, Work work) {
  switch (kind) {
    case ObjectType::Material:
      return work(ClassOf<Material>{});
    case ObjectType::Composition:
      return work(ClassOf<Composition>{});
    case ObjectType::MaterialType:
      return work(ClassOf<MaterialType>{});
    case ObjectType::Layer:
      return work(ClassOf<Layer>{});
    case ObjectType::CustomProperty:
      return work(ClassOf<CustomProperty>{});
    case ObjectType::Tag:
      return work(ClassOf<Tag>{});
    case ObjectType::Asset:
      break;
  }
  throw std::invalid_argument("assets are no kind of their own");
}

/// The six kinds in the order in which people look for them.
VELDRA_KIT_EXPORT const std::vector<ObjectType>& all_kinds();

/// The name of a kind in plural, such as "materials".
///
/// Throws `std::invalid_argument`: the kind is none of the six.
VELDRA_KIT_EXPORT std::string plural_of(ObjectType kind);

/// The name of a kind in singular, such as "material"; also "asset".
///
/// Throws `std::invalid_argument`: there is no such kind.
VELDRA_KIT_EXPORT std::string singular_of(ObjectType kind);

/// The types of compositions in the order in which people look for them.
VELDRA_KIT_EXPORT const std::vector<Composition::Type>& all_composition_types();

/// "wall", "floor", "roof", or "other" for all else.
VELDRA_KIT_EXPORT std::string name_of(Composition::Type type);

/// The type of that name.
///
/// Throws `Error`: there is none.
VELDRA_KIT_EXPORT Composition::Type composition_type(const std::string& name);

/// "mm" or "in".
VELDRA_KIT_EXPORT std::string name_of(Unit unit);

}  // namespace veldra::kit

#endif
