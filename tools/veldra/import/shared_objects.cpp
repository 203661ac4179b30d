// SPDX-License-Identifier: GPL-2.0-or-later
#include "import/shared_objects.hpp"

namespace veldra_tool {

namespace {

template <class T>
std::shared_ptr<T> named(std::map<veldra::String, std::shared_ptr<T>>& objects,
                         const veldra::String& name) {
  auto& object = objects[name];
  if (!object) object = T::create(name);
  return object;
}

template <class Objects>
void save(veldra::Library& library, const Objects& objects) {
  for (const auto& entry : objects) library.save(entry.second);
}

}  // namespace

std::shared_ptr<veldra::Tag> SharedObjects::tag(const veldra::String& name) {
  return named(tags_, name);
}

std::shared_ptr<veldra::MaterialType> SharedObjects::type(const veldra::String& name) {
  return named(types_, name);
}

std::shared_ptr<veldra::Layer> SharedObjects::layer(const veldra::String& name) {
  return named(layers_, name);
}

std::shared_ptr<veldra::CustomProperty> SharedObjects::property(const veldra::String& name,
                                                                veldra::ObjectType owner) {
  auto& object = properties_[{owner, name}];
  if (!object) object = veldra::CustomProperty::create(name, owner);
  return object;
}

void SharedObjects::save_all(veldra::Library& library) const {
  save(library, tags_);
  save(library, types_);
  save(library, layers_);
  save(library, properties_);
}

}  // namespace veldra_tool
