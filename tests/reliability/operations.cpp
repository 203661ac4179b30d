#include "reliability/scene.hpp"

#include "support/builders.hpp"
#include "support/names.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace veldra_tests {

namespace {

using Kind = Operation::Kind;
using Reactor = Library::Reactor;
using Step = std::function<void(Scene&)>;

void nothing(Scene&) {}

Operation operation_on_current(Kind kind, const std::string& name, Step prepare, Step run) {
  return {name, kind, Start::Current, std::move(prepare), std::move(run)};
}

// For each kind the member of `Objects` that is worked on and the objects that operations are
// about.

template <class T>
using Member = std::shared_ptr<T> Objects::*;

template <class T>
struct Examples {
  const char* kind;
  Member<T> member;
  const char* spare;    // nothing refers to it
  const char* stored;   // something may refer to it
  const char* foreign;  // only the source has it
};

const Examples<Tag> of_tags = {"tag", &Objects::tag, "spare tag", "Wall tag 1", "Roof tag 1"};
const Examples<Layer> of_layers = {"layer", &Objects::layer, "spare layer", "Wall layer",
                                   "Roof layer"};
const Examples<MaterialType> of_types = {"material type", &Objects::type, "spare type",
                                         "Wall core type", "Roof core type"};
const Examples<CustomProperty> of_properties = {"property", &Objects::property, "spare property",
                                                "Wall core property 1", "Roof core property 1"};
const Examples<Material> of_materials = {"material", &Objects::material, "spare material",
                                         "Wall core", "Roof core"};
const Examples<Composition> of_compositions = {"composition", &Objects::composition,
                                               "spare composition", "Wall", "Roof"};

// What `make` makes of the examples of each kind.
template <class Make>
std::vector<Operation> for_each_kind(Make make) {
  return {make(of_tags),       make(of_layers),    make(of_types),
          make(of_properties), make(of_materials), make(of_compositions)};
}

// Looked up by another handle: that of the operation is to prepare its statements while it runs.
template <class T>
unsigned id_of(const Library& library, const char* name) {
  return Library::open(library.filename(), true)->get<T>(name)->id();
}

// Opening.

void name_the_file(Scene& scene) { scene.text = scene.name(); }
void create(Scene& scene) { scene.create(); }
void open(Scene& scene) { scene.library = Library::open(scene.text, false); }
void open_read_only(Scene& scene) { scene.library = Library::open(scene.text, true); }

void name_the_library(Scene& scene) { scene.text = scene.library->filename(); }
void open_existing(Scene& scene) { scene.library = Library::openExisting(scene.text, false); }
void open_existing_read_only(Scene& scene) {
  scene.library = Library::openExisting(scene.text, true);
}
void recognise(Scene& scene) {
  scene.number = static_cast<unsigned long long>(Library::recognise(scene.text).kind) + 1;
}

// Saving.

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

void make_stored_material(Scene& scene) {
  scene.objects.material = full_material("Wall core");
  scene.objects.material->clear_code();
  scene.objects.material->comments("changed");
  scene.objects.material->cut_layer(Layer::create("new layer"));
}

void make_stored_composition(Scene& scene) {
  scene.objects.composition = composition_without_codes("Wall");
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

// The object of the source that is called `foreign` is the one that is called `stored`.
template <class T>
void map_to_stored(Scene& scene, ObjectType type, const Examples<T>& of) {
  scene.known.assign({{type, id_of<T>(*scene.source, of.foreign)}, scene.source.get()},
                     {id_of<T>(*scene.library, of.stored), IdMapping::Existing});
}

void map_references(Scene& scene) {
  map_to_stored(scene, ObjectType::Tag, of_tags);
  map_to_stored(scene, ObjectType::Layer, of_layers);
  map_to_stored(scene, ObjectType::Material, of_materials);
}

void read_foreign_composition_with_mapped_references(Scene& scene) {
  read_foreign_composition(scene);
  map_references(scene);
}

void read_mapped_composition(Scene& scene) {
  read_foreign_composition(scene);
  map_to_stored(scene, ObjectType::Composition, of_compositions);
}

// Calls with a mapping of its own, since entries stay when it throws.
template <class Call>
void with_mapping(Scene& scene, Call call) {
  IdMapping mapping = scene.known;
  call(mapping);
  scene.mapping = std::move(mapping);
}

void save_with_mapping(Scene& scene) {
  with_mapping(scene, [&scene](IdMapping& mapping) {
    scene.found<Composition>().object = scene.library->save(scene.objects.composition, mapping);
  });
}

void set_locale(Scene& scene) { scene.library->locale("de-CH"); }
void set_region(Scene& scene) { scene.library->region("Ostschweiz"); }

// Removing.

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
void keep_compositions(Scene& scene) { scene.reactor.kept = ObjectType::Composition; }

// Copying.

template <class T>
Operation copy_ids(const Examples<T>& of) {
  return operation_on_current(
      Kind::Writing, std::string("copy a ") + of.kind,
      [of](Scene& scene) { scene.ids = {id_of<T>(*scene.source, of.foreign)}; },
      [](Scene& scene) { scene.library->copy<T>(scene.source, scene.ids); });
}

void choose_roof(Scene& scene) { scene.ids = {id_of<Composition>(*scene.source, "Roof")}; }

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

// Several operations in one transaction.

void choose_for_several(Scene& scene) {
  change_material(scene);
  scene.objects.composition = scene.library->get<Composition>("spare composition");
  choose_roof(scene);
}

void do_several(Scene& scene) {
  scene.library->save(scene.objects.material);
  scene.library->remove(scene.objects.composition);
  scene.library->copy<Composition>(scene.source, scene.ids);
  scene.found<Composition>().object = scene.library->get<Composition>("Roof");
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

Operation reading(const std::string& name, Step prepare, Step run) {
  return operation_on_current(Kind::Reading, name, std::move(prepare), std::move(run));
}

template <class T>
Operation get_by_id(const Examples<T>& of) {
  return reading(
      std::string("get by id a ") + of.kind,
      [of](Scene& scene) { scene.ids = {id_of<T>(*scene.library, of.stored)}; },
      [](Scene& scene) { scene.found<T>().object = scene.library->get<T>(*scene.ids.begin()); });
}

template <class T>
Operation get_by_name(const Examples<T>& of) {
  return reading(
      std::string("get by name a ") + of.kind, [of](Scene& scene) { scene.text = of.stored; },
      [](Scene& scene) { scene.found<T>().object = scene.library->get<T>(scene.text); });
}

template <class T>
Operation get_by_ids(const Examples<T>& of) {
  return reading(
      std::string("get by ids each ") + of.kind,
      [of](Scene& scene) {
        scene.ids = {id_of<T>(*scene.library, of.stored), id_of<T>(*scene.library, of.spare), 999};
      },
      [](Scene& scene) { scene.library->get<T>(scene.found<T>().list, scene.ids); });
}

template <class T>
Operation get_all(const Examples<T>& of) {
  return reading(std::string("get every ") + of.kind, nothing,
                 [](Scene& scene) { scene.library->get<T>(scene.found<T>().list); });
}

void choose_pattern(Scene& scene) { scene.text = "Wall%"; }

template <class T>
Operation search(const Examples<T>& of) {
  return reading(std::string("search each ") + of.kind, choose_pattern,
                 [](Scene& scene) { scene.library->search<T>(scene.found<T>().list, scene.text); });
}

template <class T>
Operation count(const Examples<T>& of) {
  return reading(std::string("count each ") + of.kind, nothing,
                 [](Scene& scene) { scene.number = scene.library->count<T>(); });
}

// Reading with criteria, which are made when it begins. A type among them is told by its id.

void prepare_criteria(Scene& scene) {
  choose_pattern(scene);
  scene.objects.type = scene.library->get<MaterialType>("Wall core type");
}

MaterialCriteria of_one_type(const Scene& scene) {
  MaterialCriteria criteria;
  criteria.type = scene.objects.type;
  return criteria;
}

MaterialCriteria of_one_type_with_tags(const Scene& scene) {
  MaterialCriteria criteria = of_one_type(scene);
  criteria.tags = {"Wall core tag 1", "Wall core tag 2", "Wall inside tag 2"};
  return criteria;
}

// More than one statement takes.
MaterialCriteria with_many_tags(const Scene&) {
  MaterialCriteria criteria;
  criteria.tags = {"Wall core tag 1", "Wall inside tag 2"};
  for (int n = 0; n != 500; ++n) criteria.tags.insert(std::to_string(n).c_str());
  return criteria;
}

CompositionCriteria of_any_type_with_tags(const Scene&) {
  CompositionCriteria criteria;
  criteria.types = 0xff;
  criteria.tags = {"Wall tag 1"};
  return criteria;
}

CustomPropertyCriteria for_materials(const Scene&) {
  CustomPropertyCriteria criteria;
  criteria.object_type = ObjectType::Material;
  return criteria;
}

template <class T>
using Criteria = typename CriteriaOf<T>::type (*)(const Scene&);

template <class T>
Operation get_selected(const std::string& what, Criteria<T> criteria) {
  return reading("get " + what, prepare_criteria, [criteria](Scene& scene) {
    scene.library->get<T>(scene.found<T>().list, criteria(scene));
  });
}

template <class T>
Operation search_selected(const std::string& what, Criteria<T> criteria) {
  return reading("search " + what, prepare_criteria, [criteria](Scene& scene) {
    scene.library->search<T>(scene.found<T>().list, scene.text, criteria(scene));
  });
}

template <class T>
Operation count_selected(const std::string& what, Criteria<T> criteria) {
  return reading("count " + what, prepare_criteria, [criteria](Scene& scene) {
    scene.number = scene.library->count<T>(criteria(scene));
  });
}

template <class T>
std::vector<Operation> selecting(const std::string& what, Criteria<T> criteria) {
  return {get_selected<T>(what, criteria), search_selected<T>(what, criteria),
          count_selected<T>(what, criteria)};
}

// More than one statement takes.
void choose_many_ids(Scene& scene) {
  for (unsigned id = 1; id <= 501; ++id) scene.ids.insert(id);
}

void get_many_properties(Scene& scene) {
  scene.library->get<CustomProperty>(scene.found<CustomProperty>().list, scene.ids);
}

void check(Scene& scene) { scene.library->check(scene.findings); }

void read_in_a_snapshot(Scene& scene) {
  std::vector<std::shared_ptr<Composition>> compositions;
  std::vector<std::shared_ptr<Material>> materials;
  const Library::Snapshot snapshot(*scene.library);
  scene.library->get(compositions);
  scene.library->get(materials);
  scene.number = scene.library->count<Tag>();
  scene.found<Composition>().list = std::move(compositions);
  scene.found<Material>().list = std::move(materials);
}

std::vector<Operation> opening() {
  return {
      {"create a missing file", Kind::Making, Start::Missing, name_the_file, create},
      {"create in an empty file", Kind::Making, Start::Empty, name_the_file, create},
      {"create what is there", Kind::Opening, Start::Current, name_the_file, create},
      {"migrate version 150201", Kind::Making, Start::Version150201, name_the_file, open},
      {"migrate version 150301", Kind::Making, Start::Version150301, name_the_file, open},
      {"migrate and open read-only", Kind::Making, Start::Version150301, name_the_file,
       open_read_only},
      {"migrate what must be there", Kind::Making, Start::Version150201, name_the_file,
       open_existing},
      {"open", Kind::Opening, Start::Current, name_the_file, open},
      {"open what must be there", Kind::Opening, Start::Current, name_the_file, open_existing},
      {"open what must be there read-only", Kind::Opening, Start::Current, name_the_file,
       open_existing_read_only},
      {"open read-only", Kind::Opening, Start::Current, name_the_file, open_read_only},
  };
}

std::vector<Operation> writing(const std::vector<std::tuple<const char*, Step, Step>>& operations) {
  std::vector<Operation> result;
  for (const auto& [name, prepare, run] : operations) {
    result.push_back(operation_on_current(Kind::Writing, name, prepare, run));
  }
  return result;
}

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

std::vector<Operation> holding() {
  return {operation_on_current(Kind::Holding, "several in one transaction", choose_for_several,
                               do_several_and_commit),
          operation_on_current(Kind::Holding, "several for nothing", choose_for_several,
                               do_several_and_roll_back)};
}

std::vector<Operation> reading_otherwise() {
  return {reading("get many properties by their ids", choose_many_ids, get_many_properties),
          count_selected<Material>("materials with one of many tags", with_many_tags),
          reading("check", nothing, check),
          reading("several in a snapshot", nothing, read_in_a_snapshot),
          reading("recognise", name_the_library, recognise)};
}

std::vector<Operation> joined(const std::vector<std::vector<Operation>>& groups) {
  std::vector<Operation> all;
  for (const auto& group : groups) all.insert(all.end(), group.begin(), group.end());
  return all;
}

}  // namespace

const std::vector<Operation>& operations() {
  static const auto all =
      joined({opening(),
              for_each_kind([](const auto& of) { return save_new(of); }),
              saving_whole(),
              renaming(),
              deciding(),
              merging(),
              for_each_kind([](const auto& of) { return save_foreign(of); }),
              setting(),
              for_each_kind([](const auto& of) { return remove_id(of); }),
              for_each_kind([](const auto& of) { return remove_object(of); }),
              removing_several(),
              for_each_kind([](const auto& of) { return copy_ids(of); }),
              copying_several(),
              holding(),
              for_each_kind([](const auto& of) { return get_by_id(of); }),
              for_each_kind([](const auto& of) { return get_by_name(of); }),
              for_each_kind([](const auto& of) { return get_by_ids(of); }),
              for_each_kind([](const auto& of) { return get_all(of); }),
              for_each_kind([](const auto& of) { return search(of); }),
              for_each_kind([](const auto& of) { return count(of); }),
              selecting<Material>("materials of a type", of_one_type),
              selecting<Material>("materials of a type with tags", of_one_type_with_tags),
              selecting<Composition>("compositions of types with tags", of_any_type_with_tags),
              selecting<CustomProperty>("properties for materials", for_materials),
              reading_otherwise()});
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
                 return operation.kind != Kind::Opening && operation.kind != Kind::Reading &&
                        operation.kind != Kind::Merging;
               });
  return writing;
}

}  // namespace veldra_tests
