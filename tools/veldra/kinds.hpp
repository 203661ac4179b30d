// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_KINDS_HPP
#define VELDRA_TOOL_KINDS_HPP

#include <veldra/veldra.hpp>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace veldra_tool {

/// A class as a value, for functions that are called with one of the six.
template <class T>
struct ClassOf {
  using type = T;
};

/// Calls `work(ClassOf<T>{})` with the class of a kind.
template <class Work>
auto with_class_of(veldra::ObjectType kind, Work work) {
  switch (kind) {
    case veldra::ObjectType::Material:
      return work(ClassOf<veldra::Material>{});
    case veldra::ObjectType::Composition:
      return work(ClassOf<veldra::Composition>{});
    case veldra::ObjectType::MaterialType:
      return work(ClassOf<veldra::MaterialType>{});
    case veldra::ObjectType::Layer:
      return work(ClassOf<veldra::Layer>{});
    case veldra::ObjectType::CustomProperty:
      return work(ClassOf<veldra::CustomProperty>{});
    case veldra::ObjectType::Tag:
      return work(ClassOf<veldra::Tag>{});
    case veldra::ObjectType::Asset:
      break;
  }
  throw std::invalid_argument("assets are no kind of their own");
}

/// The kinds in the order in which people look for them.
const std::vector<veldra::ObjectType>& all_kinds();

/// The names of the kinds on the command line, in plural and singular.
const std::map<std::string, veldra::ObjectType>& kinds_by_name();

/// "materials", and "material"; assets have a name in the singular only.
std::string plural_of(veldra::ObjectType kind);
std::string singular_of(veldra::ObjectType kind);

std::string name_of(veldra::Composition::Type type);
std::string name_of(veldra::Unit unit);

/// The type of that name; throws `Failure` when there is none.
veldra::Composition::Type composition_type(const std::string& name);

}  // namespace veldra_tool

#endif
