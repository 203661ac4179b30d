// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/operation_parts.hpp"
#include "support/builders.hpp"

namespace veldra_tests {

namespace {

using Kind = Operation::Kind;
using Reactor = Library::Reactor;

template <class T>
Step saving(Member<T> member) {
  return [member](Scene& scene) {
    scene.found<T>().object = scene.library->save(scene.objects.*member);
  };
}

template <class T>
Operation save_new(const Examples<T>& of) {
  return operation_on_current(
      Kind::Writing, std::string("save a ") + of.kind,
      [of](Scene& scene) { scene.objects.*of.member = named<T>("New"); }, saving(of.member));
}

template <class T>
Operation save_stored(const Examples<T>& of) {
  return operation_on_current(
      Kind::Merging, std::string("save a stored ") + of.kind,
      [of](Scene& scene) { scene.objects.*of.member = named<T>(of.stored); }, saving(of.member));
}

template <class T>
Operation save_foreign(const Examples<T>& of) {
  return operation_on_current(
      Kind::Writing, std::string("save a foreign ") + of.kind,
      [of](Scene& scene) { scene.objects.*of.member = scene.source->get<T>(of.foreign); },
      saving(of.member));
}

template <class T>
Operation rename(const Examples<T>& of) {
  return operation_on_current(
      Kind::Writing, std::string("rename a ") + of.kind,
      [of](Scene& scene) {
        scene.objects.*of.member = scene.library->get<T>(of.stored);
        (scene.objects.*of.member)->name("Renamed");
      },
      saving(of.member));
}

void make_full_material(Scene& scene) { scene.objects.material = full_material("Oak"); }
void make_full_composition(Scene& scene) { scene.objects.composition = full_composition("New"); }

void change_composition(Scene& scene) {
  scene.objects.composition = scene.library->get<Composition>("Wall");
  Composition& composition = *scene.objects.composition;
  composition.comments("changed");
  composition.removeLayer(0);
  composition.appendLayer({full_material("Oak"), Material::Function::Structure, 7.5});
  composition.entity_layer(Layer::create("spare layer"));
  composition.clear_custom_values();
}

void make_stored_material(Scene& scene) {
  scene.objects.material = full_without_codes<Material>("Wall core");
  scene.objects.material->comments("changed");
  scene.objects.material->cut_layer(Layer::create("new layer"));
}

void make_stored_composition(Scene& scene) {
  scene.objects.composition = full_without_codes<Composition>("Wall");
  scene.objects.composition->comments("changed");
  scene.objects.composition->entity_layer(Layer::create("new layer"));
}

template <class T>
Operation decide(const char* name, Reactor::Decision decision, Step make, const Examples<T>& of) {
  return operation_on_current(
      Kind::Writing, name,
      [decision, make](Scene& scene) {
        scene.reactor.decision = decision;
        make(scene);
      },
      saving(of.member));
}

void read_changed_foreign_composition(Scene& scene) {
  scene.objects.composition = scene.source->get<Composition>("Roof");
  scene.objects.composition->comments("changed");
}

void read_foreign_composition(Scene& scene) {
  scene.objects.composition = scene.source->get<Composition>("Roof");
}

void read_foreign_composition_with_mapped_references(Scene& scene) {
  read_foreign_composition(scene);
  map_references(scene);
}

void read_mapped_composition(Scene& scene) {
  read_foreign_composition(scene);
  map_to_stored(scene, ObjectType::Composition, of_compositions);
}

void save_with_mapping(Scene& scene) {
  with_mapping(scene, [&scene](IdMapping& mapping) {
    scene.found<Composition>().object = scene.library->save(scene.objects.composition, mapping);
  });
}

void set_locale(Scene& scene) { scene.library->locale("de-CH"); }
void set_region(Scene& scene) { scene.library->region("Ostschweiz"); }

std::vector<Operation> saving_whole() {
  return writing({
      {"save a material with all that it refers to", make_full_material,
       saving(&Objects::material)},
      {"save a composition with all that it refers to", make_full_composition,
       saving(&Objects::composition)},
      {"change a material", change_material, saving(&Objects::material)},
      {"change a composition", change_composition, saving(&Objects::composition)},
      {"save a changed composition of another library", read_changed_foreign_composition,
       saving(&Objects::composition)},
      {"save with a mapping", read_foreign_composition, save_with_mapping},
      {"save with a mapping of what is referred to",
       read_foreign_composition_with_mapped_references, save_with_mapping},
  });
}

std::vector<Operation> deciding() {
  return {
      decide("use an existing material", Reactor::UseExisting, make_stored_material, of_materials),
      decide("overwrite an existing material", Reactor::Overwrite, make_stored_material,
             of_materials),
      decide("save a material under another name", Reactor::Rename, make_stored_material,
             of_materials),
      decide("use existing objects", Reactor::UseExisting, make_stored_composition,
             of_compositions),
      decide("overwrite existing objects", Reactor::Overwrite, make_stored_composition,
             of_compositions),
      decide("save objects under other names", Reactor::Rename, make_stored_composition,
             of_compositions),
  };
}

// A tag is never written again, and of a material or composition the reactor decides.
std::vector<Operation> renaming() {
  return {rename(of_layers), rename(of_types), rename(of_properties), rename(of_materials),
          rename(of_compositions)};
}

std::vector<Operation> merging() {
  return {save_stored(of_tags), save_stored(of_layers), save_stored(of_types),
          save_stored(of_properties),
          operation_on_current(Kind::Merging, "save what a mapping has", read_mapped_composition,
                               save_with_mapping)};
}

std::vector<Operation> setting() {
  return {operation_on_current(Kind::Setting, "set the locale", nothing, set_locale),
          operation_on_current(Kind::Setting, "set the region", nothing, set_region)};
}

}  // namespace

void change_material(Scene& scene) {
  scene.objects.material = scene.library->get<Material>("Wall core");
  Material& material = *scene.objects.material;
  material.comments("changed");
  material.code("Changed");
  material.thicknesses(toModify) = {1.0, 2.0, 3.0};
  material.addTag(Tag::create("spare tag"));
  material.addTag(Tag::create("new tag"));
  material.cut_layer(Layer::create("new layer"));
  material.custom_value("spare property", "changed");
}

void map_references(Scene& scene) {
  map_to_stored(scene, ObjectType::Tag, of_tags);
  map_to_stored(scene, ObjectType::Layer, of_layers);
  map_to_stored(scene, ObjectType::Material, of_materials);
}

std::vector<Operation> saving_operations() {
  return joined({for_each_kind([](const auto& of) { return save_new(of); }), saving_whole(),
                 renaming(), deciding(), merging(),
                 for_each_kind([](const auto& of) { return save_foreign(of); }), setting()});
}

}  // namespace veldra_tests
