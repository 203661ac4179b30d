#include "reliability/scene.hpp"

#include "support/builders.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace veldra_tests {

namespace {

using veldra::Composition;
using veldra::CompositionCriteria;
using veldra::CustomProperty;
using veldra::CustomPropertyCriteria;
using veldra::Layer;
using veldra::Library;
using veldra::Material;
using veldra::MaterialCriteria;
using veldra::MaterialType;
using veldra::ObjectKey;
using veldra::ObjectType;
using veldra::Tag;
using veldra::toModify;

using Kind = Operation::Kind;
using Reactor = Library::Reactor;

void nothing(Scene&) {}

// Opening.

void name_the_file(Scene& scene) { scene.text = scene.name(); }
void create(Scene& scene) { scene.create(); }
void open(Scene& scene) { scene.library = Library::open(scene.text, false); }
void open_read_only(Scene& scene) { scene.library = Library::open(scene.text, true); }

// Saving. The members of `Objects` are saved; which one an operation is about is told by `member`.

template <class T>
using Member = std::shared_ptr<T> Objects::*;

template <class T>
std::function<void(Scene&)> saving(Member<T> member) {
  return [member](Scene& scene) { scene.library->save(scene.objects.*member); };
}

template <class T>
Operation save_new(const char* name, Member<T> member) {
  return {name, Kind::Writing, Start::Current,
          [member](Scene& scene) { scene.objects.*member = named<T>("New"); }, saving(member)};
}

template <class T>
Operation rename(const char* name, Member<T> member, const char* stored) {
  return {name, Kind::Writing, Start::Current,
          [member, stored](Scene& scene) {
            scene.objects.*member = scene.library->get<T>(stored);
            (scene.objects.*member)->name("Renamed");
          },
          saving(member)};
}

Operation save_composition_with(const char* name, int decision) {
  return {name, Kind::Writing, Start::Current,
          [decision](Scene& scene) {
            scene.reactor.decision = decision;
            scene.objects.composition = composition_without_codes("Wall");
            scene.objects.composition->comments("changed");
            scene.objects.composition->entity_layer(Layer::create("new layer"));
          },
          saving(&Objects::composition)};
}

void make_full_material(Scene& scene) { scene.objects.material = full_material("Oak"); }
void make_full_composition(Scene& scene) { scene.objects.composition = full_composition("New"); }

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

void change_composition(Scene& scene) {
  scene.objects.composition = scene.library->get<Composition>("Wall");
  Composition& composition = *scene.objects.composition;
  composition.comments("changed");
  composition.removeLayer(0);
  composition.appendLayer({full_material("Oak"), Material::Function::Structure, 7.5});
  composition.entity_layer(Layer::create("spare layer"));
  composition.clear_custom_values();
}

void read_foreign_composition(Scene& scene) {
  scene.objects.composition = scene.source->get<Composition>("Roof");
  scene.objects.composition->comments("changed");
}

void set_locale(Scene& scene) { scene.library->locale("de-CH"); }
void set_region(Scene& scene) { scene.library->region("Ostschweiz"); }

// Removing.

template <class T>
unsigned id_of(const Library& library, const char* name) {
  return library.get<T>(name)->id();
}

template <class T>
Operation remove_one(const char* name, const char* stored) {
  return {name, Kind::Removing, Start::Current,
          [stored](Scene& scene) { scene.ids = {id_of<T>(*scene.library, stored)}; },
          [](Scene& scene) { scene.library->remove<T>(*scene.ids.begin()); }};
}

void find_spare_composition(Scene& scene) {
  scene.objects.composition = scene.library->get<Composition>("spare composition");
}

void remove_object(Scene& scene) { scene.library->remove(scene.objects.composition); }

void choose_tags(Scene& scene) {
  std::vector<std::shared_ptr<Tag>> tags;
  scene.library->get(tags);
  for (const auto& tag : tags) scene.ids.insert(tag->id());
}

void remove_ids(Scene& scene) { scene.library->remove<Tag>(scene.ids, scene.removed); }

void choose_keys(Scene& scene) {
  const Library& library = *scene.library;
  scene.keys = {{ObjectType::Tag, id_of<Tag>(library, "spare tag")},
                {ObjectType::Layer, id_of<Layer>(library, "spare layer")},
                {ObjectType::Layer, id_of<Layer>(library, "Wall layer")},
                {ObjectType::MaterialType, id_of<MaterialType>(library, "spare type")},
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

// Copying.

void choose_roof(Scene& scene) { scene.ids = {id_of<Composition>(*scene.source, "Roof")}; }
void copy_ids(Scene& scene) { scene.library->copy<Composition>(scene.source, scene.ids); }

void choose_source_keys(Scene& scene) {
  const Library& source = *scene.source;
  scene.reactor.decision = Reactor::Overwrite;
  scene.keys = {{ObjectType::Tag, id_of<Tag>(source, "Roof tag 1")},
                {ObjectType::Material, id_of<Material>(source, "Wall core")},
                {ObjectType::Composition, id_of<Composition>(source, "Wall")}};
}

void copy_keys(Scene& scene) { scene.library->copy(scene.source, scene.keys); }
void copy_all(Scene& scene) { scene.library->copyAll(scene.source); }

// Several operations in one transaction.

void choose_for_several(Scene& scene) {
  change_material(scene);
  find_spare_composition(scene);
  choose_roof(scene);
}

void do_several(Scene& scene) {
  scene.library->save(scene.objects.material);
  scene.library->remove(scene.objects.composition);
  scene.library->copy<Composition>(scene.source, scene.ids);
  scene.library->region("Ostschweiz");
}

void do_several_and_commit(Scene& scene) {
  Library::Transaction transaction(*scene.library);
  do_several(scene);
  transaction.commit();
}

void do_several_and_roll_back(Scene& scene) {
  const Library::Transaction transaction(*scene.library);
  do_several(scene);
}

// Reading.

void choose_wall(Scene& scene) { scene.ids = {id_of<Composition>(*scene.library, "Wall")}; }
void name_core(Scene& scene) { scene.text = "Wall core"; }
void name_pattern(Scene& scene) { scene.text = "Wall%"; }

void get_by_id(Scene& scene) {
  scene.found.composition = scene.library->get<Composition>(*scene.ids.begin());
}

void get_by_name(Scene& scene) { scene.found.material = scene.library->get<Material>(scene.text); }
void get_by_ids(Scene& scene) { scene.library->get<Composition>(scene.compositions, scene.ids); }
void get_compositions(Scene& scene) { scene.library->get<Composition>(scene.compositions); }
void get_materials(Scene& scene) { scene.library->get<Material>(scene.materials); }

void get_selected(Scene& scene) {
  MaterialCriteria criteria;
  criteria.tags = {"Wall core tag 1", "Wall inside tag 2"};
  scene.library->get<Material>(scene.materials, criteria);
}

void get_properties(Scene& scene) {
  CustomPropertyCriteria criteria;
  criteria.object_type = ObjectType::Material;
  scene.library->get<CustomProperty>(scene.properties, criteria);
}

void search(Scene& scene) { scene.library->search<Material>(scene.materials, scene.text); }

void search_selected(Scene& scene) {
  CompositionCriteria criteria;
  criteria.types = 0xff;
  criteria.tags = {"Wall tag 1"};
  scene.library->search<Composition>(scene.compositions, scene.text, criteria);
}

void count(Scene& scene) { scene.number = scene.library->count<Material>(); }

void count_selected(Scene& scene) {
  MaterialCriteria criteria;
  criteria.tags = {"Wall core tag 1"};
  scene.number = scene.library->count<Material>(criteria);
}

// What it finds is not compared: SQLite tells of a page that cannot be read as of a damaged one.
void check(Scene& scene) {
  std::vector<veldra::String> findings;
  scene.library->check(findings);
}

std::vector<Operation> opening() {
  return {
      {"create a missing file", Kind::Making, Start::Missing, name_the_file, create},
      {"create in an empty file", Kind::Making, Start::Empty, name_the_file, create},
      {"migrate version 150201", Kind::Making, Start::Version150201, name_the_file, open},
      {"migrate version 150301", Kind::Making, Start::Version150301, name_the_file, open},
      {"migrate and open read-only", Kind::Making, Start::Version150301, name_the_file,
       open_read_only},
      {"open", Kind::Opening, Start::Current, name_the_file, open},
      {"open read-only", Kind::Opening, Start::Current, name_the_file, open_read_only},
  };
}

std::vector<Operation> saving() {
  return {
      save_new("save a tag", &Objects::tag),
      save_new("save a layer", &Objects::layer),
      save_new("save a material type", &Objects::type),
      save_new("save a property", &Objects::property),
      save_new("save a material", &Objects::material),
      save_new("save a composition", &Objects::composition),
      {"save a material with all that it refers to", Kind::Writing, Start::Current,
       make_full_material, saving(&Objects::material)},
      {"save a composition with all that it refers to", Kind::Writing, Start::Current,
       make_full_composition, saving(&Objects::composition)},
      rename("rename a layer", &Objects::layer, "Wall layer"),
      rename("rename a material type", &Objects::type, "Generic"),
      rename("rename a property", &Objects::property, "spare property"),
      {"change a material", Kind::Writing, Start::Current, change_material,
       saving(&Objects::material)},
      {"change a composition", Kind::Writing, Start::Current, change_composition,
       saving(&Objects::composition)},
      save_composition_with("use existing objects", Reactor::UseExisting),
      save_composition_with("overwrite existing objects", Reactor::Overwrite),
      {"save an object of another library", Kind::Writing, Start::Current, read_foreign_composition,
       saving(&Objects::composition)},
      {"set the locale", Kind::Setting, Start::Current, nothing, set_locale},
      {"set the region", Kind::Setting, Start::Current, nothing, set_region},
  };
}

std::vector<Operation> removing() {
  return {
      remove_one<Tag>("remove a tag", "spare tag"),
      remove_one<Layer>("remove a layer", "spare layer"),
      remove_one<MaterialType>("remove a material type", "spare type"),
      remove_one<CustomProperty>("remove a property", "spare property"),
      remove_one<Material>("remove a material", "spare material"),
      remove_one<Composition>("remove a composition", "spare composition"),
      {"remove an object", Kind::Removing, Start::Current, find_spare_composition, remove_object},
      {"remove ids", Kind::RemovingSeveral, Start::Current, choose_tags, remove_ids},
      {"remove keys", Kind::RemovingSeveral, Start::Current, choose_keys, remove_keys},
      {"purge a kind", Kind::Purging, Start::Current, nothing, purge_layers},
      {"purge kinds", Kind::Purging, Start::Current, nothing, purge_kinds},
      {"purge", Kind::Purging, Start::Current, nothing, purge_all},
  };
}

std::vector<Operation> copying() {
  return {
      {"copy ids", Kind::Writing, Start::Current, choose_roof, copy_ids},
      {"copy keys", Kind::Writing, Start::Current, choose_source_keys, copy_keys},
      {"copy all", Kind::Writing, Start::Current, nothing, copy_all},
  };
}

std::vector<Operation> holding() {
  return {
      {"several in one transaction", Kind::Holding, Start::Current, choose_for_several,
       do_several_and_commit},
      {"several for nothing", Kind::Holding, Start::Current, choose_for_several,
       do_several_and_roll_back},
  };
}

std::vector<Operation> reading() {
  return {
      {"get by id", Kind::Reading, Start::Current, choose_wall, get_by_id},
      {"get by name", Kind::Reading, Start::Current, name_core, get_by_name},
      {"get by ids", Kind::Reading, Start::Current, choose_wall, get_by_ids},
      {"get compositions", Kind::Reading, Start::Current, nothing, get_compositions},
      {"get materials", Kind::Reading, Start::Current, nothing, get_materials},
      {"get selected", Kind::Reading, Start::Current, nothing, get_selected},
      {"get properties", Kind::Reading, Start::Current, nothing, get_properties},
      {"search", Kind::Reading, Start::Current, name_pattern, search},
      {"search selected", Kind::Reading, Start::Current, name_pattern, search_selected},
      {"count", Kind::Reading, Start::Current, nothing, count},
      {"count selected", Kind::Reading, Start::Current, nothing, count_selected},
      {"check", Kind::Reading, Start::Current, nothing, check},
  };
}

std::vector<Operation> joined(const std::vector<std::vector<Operation>>& groups) {
  std::vector<Operation> all;
  for (const auto& group : groups) all.insert(all.end(), group.begin(), group.end());
  return all;
}

}  // namespace

const std::vector<Operation>& operations() {
  static const auto all =
      joined({opening(), saving(), removing(), copying(), holding(), reading()});
  return all;
}

const Operation& operation_named(const char* name) {
  const std::string wanted(name);
  const auto found = std::find_if(operations().begin(), operations().end(),
                                  [&](const Operation& each) { return each.name == wanted; });
  if (found == operations().end()) throw std::runtime_error("no operation " + wanted);
  return *found;
}

std::vector<Operation> writing_operations() {
  std::vector<Operation> writing;
  std::copy_if(operations().begin(), operations().end(), std::back_inserter(writing),
               [](const Operation& operation) {
                 return operation.kind != Kind::Opening && operation.kind != Kind::Reading;
               });
  return writing;
}

}  // namespace veldra_tests
