// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/shared_objects.hpp"

namespace veldra::kit {

namespace {

template <class T>
std::shared_ptr<T> named(std::map<String, std::shared_ptr<T>>& objects, const String& name) {
  auto& object = objects[name];
  if (!object) object = T::create(name);
  return object;
}

template <class Objects>
void save(Library& library, const Objects& objects) {
  for (const auto& entry : objects) library.save(entry.second);
}

}  // namespace

std::shared_ptr<Tag> SharedObjects::tag(const String& name) { return named(tags_, name); }

std::shared_ptr<MaterialType> SharedObjects::type(const String& name) {
  return named(types_, name);
}

std::shared_ptr<Layer> SharedObjects::layer(const String& name) { return named(layers_, name); }

std::shared_ptr<CustomProperty> SharedObjects::property(const String& name, ObjectType owner) {
  auto& object = properties_[{owner, name}];
  if (!object) object = CustomProperty::create(name, owner);
  return object;
}

void SharedObjects::save_all(Library& library) const {
  save(library, tags_);
  save(library, types_);
  save(library, layers_);
  save(library, properties_);
}

}  // namespace veldra::kit
