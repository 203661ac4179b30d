// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_MODEL_KINDS_HPP
#define VELDRA_TESTS_STORE_MODEL_KINDS_HPP

#include "store/model_store.hpp"
#include "support/contents.hpp"

#include <veldra/veldra.hpp>

#include <memory>
#include <string>
#include <vector>

namespace veldra_tests {

/// The kinds in the order in which removing and copying take them.
constexpr veldra::ObjectType kKinds[] = {
    veldra::ObjectType::Composition,    veldra::ObjectType::Material,
    veldra::ObjectType::MaterialType,   veldra::ObjectType::Layer,
    veldra::ObjectType::CustomProperty, veldra::ObjectType::Tag};

/// Names a class where there is no object of it.
template <class T>
struct Kind {
  using Class = T;
};

template <class Call>
auto for_kind(veldra::ObjectType kind, const Call& call) {
  switch (kind) {
    case veldra::ObjectType::Tag:
      return call(Kind<veldra::Tag>());
    case veldra::ObjectType::MaterialType:
      return call(Kind<veldra::MaterialType>());
    case veldra::ObjectType::Layer:
      return call(Kind<veldra::Layer>());
    case veldra::ObjectType::CustomProperty:
      return call(Kind<veldra::CustomProperty>());
    case veldra::ObjectType::Material:
      return call(Kind<veldra::Material>());
    default:
      return call(Kind<veldra::Composition>());
  }
}

inline veldra::String text(const std::string& utf8) { return veldra::String(utf8.c_str()); }

template <class T>
ModelKey model_key_of(const T& object) {
  return {veldra::ObjectTraits<T>::type, object.name().utf8()};
}

inline ModelKey model_key_of(const veldra::CustomProperty& property) {
  return {veldra::ObjectType::CustomProperty, property.name().utf8(), property.object_type()};
}

inline bool same(const ModelKey& left, const ModelKey& right) {
  return !(left < right || right < left);
}

/// The stored object of that name; empty when there is none.
template <class T>
std::shared_ptr<T> find(const veldra::Library& library, const ModelKey& key) {
  for (const auto& object : all_of<T>(library)) {
    if (same(model_key_of(*object), key)) return object;
  }
  return nullptr;
}

}  // namespace veldra_tests

#endif
