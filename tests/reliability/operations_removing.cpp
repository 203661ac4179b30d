// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/operation_parts.hpp"

namespace veldra_tests {

namespace {

using Kind = Operation::Kind;

template <class T>
Operation remove_id(const Examples<T>& of) {
  return operation_on_current(
      Kind::Removing, std::string("remove a ") + of.kind,
      [of](Scene& scene) { scene.ids = {id_of<T>(*scene.library, of.spare)}; },
      [](Scene& scene) { scene.number = scene.library->remove<T>(*scene.ids.begin()) ? 1 : 0; });
}

template <class T>
Operation remove_object(const Examples<T>& of) {
  return operation_on_current(
      Kind::Removing, std::string("remove the object of a ") + of.kind,
      [of](Scene& scene) { scene.objects.*of.member = scene.library->get<T>(of.spare); },
      [of](Scene& scene) {
        scene.number = scene.library->remove(scene.objects.*of.member) ? 1 : 0;
      });
}

template <class T>
void choose_all(Scene& scene) {
  std::vector<std::shared_ptr<T>> all;
  scene.library->get(all);
  for (const auto& each : all) scene.ids.insert(each->id());
}

void remove_ids(Scene& scene) { scene.library->remove<Tag>(scene.ids, scene.removed); }

void choose_keys(Scene& scene) {
  const Library& library = *scene.library;
  scene.keys = {{ObjectType::Tag, id_of<Tag>(library, "spare tag")},
                {ObjectType::Layer, id_of<Layer>(library, "spare layer")},
                {ObjectType::Layer, id_of<Layer>(library, "Wall layer")},
                {ObjectType::MaterialType, id_of<MaterialType>(library, "spare type")},
                {ObjectType::CustomProperty, id_of<CustomProperty>(library, "spare property")},
                {ObjectType::Material, id_of<Material>(library, "spare material")},
                {ObjectType::Composition, id_of<Composition>(library, "spare composition")}};
}

void remove_keys(Scene& scene) { scene.library->remove(scene.keys, scene.removed); }
void purge_layers(Scene& scene) { scene.library->purge<Layer>(scene.removed); }

void purge_kinds(Scene& scene) {
  scene.library->purge({ObjectType::Tag, ObjectType::MaterialType, ObjectType::CustomProperty},
                       scene.removed);
}

void purge_all(Scene& scene) { scene.library->purge(scene.removed); }
void keep_compositions(Scene& scene) {
  scene.reactor.on_may_remove = [](Library&, const ObjectKey& key) {
    return key.type == ObjectType::Composition ? 1 : 0;
  };
}

std::vector<Operation> removing_several() {
  const auto removing = [](const char* name, Step prepare, Step run) {
    return operation_on_current(Kind::RemovingSeveral, name, std::move(prepare), std::move(run));
  };
  const auto purging = [](const char* name, Step prepare, Step run) {
    return operation_on_current(Kind::Purging, name, std::move(prepare), std::move(run));
  };
  return {
      removing("remove ids", choose_all<Tag>, remove_ids),
      removing("remove keys", choose_keys, remove_keys),
      purging("purge a kind", nothing, purge_layers),
      purging("purge kinds", nothing, purge_kinds),
      purging("purge", nothing, purge_all),
      purging("purge but for what is refused", keep_compositions, purge_all),
  };
}

}  // namespace

std::vector<Operation> removing_operations() {
  return joined({for_each_kind([](const auto& of) { return remove_id(of); }),
                 for_each_kind([](const auto& of) { return remove_object(of); }),
                 removing_several()});
}

}  // namespace veldra_tests
