// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/plan/stored_objects.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/text.hpp>

#include <type_traits>

namespace veldra::kit {

namespace {

/// Asking for one object costs as much as reading so many of a list.
constexpr unsigned long long list_factor = 8;

unsigned id_in(const std::unordered_map<std::string, unsigned>& ids, const std::string& key) {
  const auto found = ids.find(key);
  return found != ids.end() ? found->second : 0;
}

}  // namespace

template <class T>
StoredObjects<T>::StoredObjects(const Library& destination, unsigned long long incoming,
                                bool folds_names, const std::function<bool()>& has_codes)
    : destination_(destination),
      folds_names_(folds_names),
      all_(folds_names || incoming * list_factor >= destination.count<T>() || has_codes()) {
  if (!all_) return;
  destination.for_each<T>([this](const std::shared_ptr<T>& object) {
    enter(*object);
    return true;
  });
}

template <class T>
void StoredObjects<T>::enter(const T& object) {
  const std::string name = object.name().utf8();
  by_name_.emplace(name, object.id());
  if (folds_names_) by_folded_name_.emplace(lower_case(name), object.id());
  if constexpr (std::is_same_v<T, Material>) {
    if (object.has_code()) by_code_.emplace(object.code().utf8(), object.id());
  }
}

template <class T>
unsigned StoredObjects<T>::with_name(const std::string& name) const {
  if (all_) return id_in(by_name_, name);
  const auto found = destination_.get<T>(library_text(name));
  return found ? found->id() : 0;
}

template <class T>
unsigned StoredObjects<T>::with_folded_name(const std::string& name) const {
  return id_in(by_folded_name_, lower_case(name));
}

template <class T>
unsigned StoredObjects<T>::with_code(const std::string& code) const {
  return id_in(by_code_, code);
}

StoredProperties::StoredProperties(const Library& destination) {
  destination.for_each<CustomProperty>([this](const std::shared_ptr<CustomProperty>& property) {
    ids_.emplace(std::make_pair(property->name(), property->object_type()), property->id());
    return true;
  });
}

unsigned StoredProperties::with_name(const CustomProperty& incoming) const {
  const auto found = ids_.find({incoming.name(), incoming.object_type()});
  return found != ids_.end() ? found->second : 0;
}

template class StoredObjects<Tag>;
template class StoredObjects<Layer>;
template class StoredObjects<MaterialType>;
template class StoredObjects<Material>;
template class StoredObjects<Composition>;

}  // namespace veldra::kit
