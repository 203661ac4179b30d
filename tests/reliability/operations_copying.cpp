// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/operation_parts.hpp"

namespace veldra_tests {

namespace {

using Kind = Operation::Kind;
using Reactor = Library::Reactor;

template <class T>
Operation copy_ids(const Examples<T>& of) {
  return operation_on_current(
      Kind::Writing, std::string("copy a ") + of.kind,
      [of](Scene& scene) { scene.ids = {id_of<T>(*scene.source, of.foreign)}; },
      [](Scene& scene) { scene.library->copy<T>(scene.source, scene.ids); });
}

void choose_roof_with_mapped_references(Scene& scene) {
  choose_roof(scene);
  map_references(scene);
}

void copy_ids_with_mapping(Scene& scene) {
  with_mapping(scene, [&scene](IdMapping& mapping) {
    scene.library->copy<Composition>(scene.source, scene.ids, mapping);
  });
}

void choose_source_keys(Scene& scene) {
  const Library& source = *scene.source;
  scene.reactor.decision = Reactor::Overwrite;
  scene.keys = {{ObjectType::Tag, id_of<Tag>(source, "Roof tag 1")},
                {ObjectType::Material, id_of<Material>(source, "Wall core")},
                {ObjectType::Composition, id_of<Composition>(source, "Wall")}};
}

void copy_keys(Scene& scene) { scene.library->copy(scene.source, scene.keys); }

// The keys are also taken for those of the library itself, which writes nothing.
void copy_keys_with_mapping(Scene& scene) {
  with_mapping(scene, [&scene](IdMapping& mapping) {
    scene.library->copy(scene.library, scene.keys, mapping);
    scene.library->copy(scene.source, scene.keys, mapping);
  });
}

void decide_to_rename(Scene& scene) { scene.reactor.decision = Reactor::Rename; }
void copy_all(Scene& scene) { scene.library->copyAll(scene.source); }

void copy_all_with_mapping(Scene& scene) {
  with_mapping(scene,
               [&scene](IdMapping& mapping) { scene.library->copyAll(scene.source, mapping); });
}

void choose_backup(Scene& scene) { scene.text = scene.write_backup(); }
void restore_backup(Scene& scene) { scene.library->restoreFrom(scene.text); }

void restore_another_library(Scene& scene) {
  scene.library->restoreFrom(scene.source->filename(), true);
}

std::vector<Operation> restoring() {
  return {operation_on_current(Kind::Replacing, "restore a backup", choose_backup, restore_backup),
          operation_on_current(Kind::Replacing, "restore another library", nothing,
                               restore_another_library)};
}

std::vector<Operation> copying_several() {
  return writing({
      {"copy ids with a mapping", choose_roof, copy_ids_with_mapping},
      {"copy ids with a mapping of what is referred to", choose_roof_with_mapped_references,
       copy_ids_with_mapping},
      {"copy keys", choose_source_keys, copy_keys},
      {"copy keys with a mapping", choose_source_keys, copy_keys_with_mapping},
      {"copy all", nothing, copy_all},
      {"copy all under other names", decide_to_rename, copy_all},
      {"copy all with a mapping", nothing, copy_all_with_mapping},
  });
}

}  // namespace

void choose_roof(Scene& scene) { scene.ids = {id_of<Composition>(*scene.source, "Roof")}; }

std::vector<Operation> copying_operations() {
  return joined(
      {for_each_kind([](const auto& of) { return copy_ids(of); }), copying_several(), restoring()});
}

}  // namespace veldra_tests
