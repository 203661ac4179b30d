// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/plan/stored_objects.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/text.hpp>

namespace veldra::kit {

namespace {

/// Asking for one object costs as much as so many names.
constexpr unsigned long long names_factor = 32;

unsigned id_in(const std::unordered_map<std::string, unsigned>& ids, const std::string& key) {
  const auto found = ids.find(key);
  return found != ids.end() ? found->second : 0;
}

}  // namespace

template <class T>
StoredObjects<T>::StoredObjects(const Library& destination, unsigned long long incoming,
                                bool folds_names)
    : destination_(destination),
      folds_names_(folds_names),
      all_(folds_names || incoming * names_factor >= destination.count<T>()) {
  if (!all_) return;
  for (const auto& [id, name] : destination.names<T>()) enter(name.utf8(), id);
}

template <class T>
void StoredObjects<T>::enter(const std::string& name, unsigned id) {
  by_name_.emplace(name, id);
  if (folds_names_) by_folded_name_.emplace(lower_case(name), id);
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

unsigned StoredCodes::holder_of(const std::string& code) {
  if (!ids_) read();
  return id_in(*ids_, code);
}

void StoredCodes::read() {
  ids_.emplace();
  destination_.for_each<Material>([this](const std::shared_ptr<Material>& material) {
    if (material->has_code()) ids_->emplace(material->code().utf8(), material->id());
    return true;
  });
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
