// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/fields.hpp>
#include <veldra/kit/plan.hpp>

#include "kit/text/sha256.hpp"

#include <type_traits>

namespace veldra::kit {

namespace {

template <class T>
void add_custom_values(Sha256& sum, const T& object) {
  if constexpr (std::is_base_of_v<CustomValued<T>, T>) {
    for (const auto& [property, value] : object.custom_values()) {
      sum.add(property->name().utf8());
      sum.add(std::to_string(static_cast<int>(property->object_type())));
      sum.add(value.utf8());
    }
  }
}

}  // namespace

template <class T>
std::string fingerprint_of(const T& object) {
  static const Fields<T> fields;
  Sha256 sum;
  for (const auto& field : fields) {
    if (field.origin != Origin::Stored && field.origin != Origin::Asset) continue;
    const Value value = field.get(object);
    if (value == field.initial) continue;
    sum.add(field.name());
    sum.add(value_text(value));
  }
  add_custom_values(sum, object);
  return sum.digits();
}

template VELDRA_KIT_EXPORT std::string fingerprint_of(const Tag&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const Layer&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const MaterialType&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const CustomProperty&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const Material&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const Composition&);

}  // namespace veldra::kit
