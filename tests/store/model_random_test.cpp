#include "store/model_store.hpp"
#include "support/database.hpp"
#include "support/description.hpp"
#include "support/recording_reactor.hpp"
#include "support/temporary.hpp"
#include "support/thrown.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>

namespace veldra_tests {
namespace {

using veldra::Composition;
using veldra::CustomProperty;
using veldra::IdMapping;
using veldra::Layer;
using veldra::Library;
using veldra::Material;
using veldra::MaterialType;
using veldra::ObjectKey;
using veldra::ObjectType;
using veldra::String;
using veldra::Tag;
using veldra::Unit;

constexpr int kSteps = 600;
constexpr int kStepsBetweenLaws = 60;
constexpr unsigned kMissing = 1000000;

/// The kinds in the order in which removing and copying take them.
constexpr ObjectType kKinds[] = {ObjectType::Composition,    ObjectType::Material,
                                 ObjectType::MaterialType,   ObjectType::Layer,
                                 ObjectType::CustomProperty, ObjectType::Tag};

/// Names a class where there is no object of it.
template <class T>
struct Kind {
  using Class = T;
};

template <class Call>
auto for_kind(ObjectType kind, const Call& call) {
  switch (kind) {
    case ObjectType::Tag:
      return call(Kind<Tag>());
    case ObjectType::MaterialType:
      return call(Kind<MaterialType>());
    case ObjectType::Layer:
      return call(Kind<Layer>());
    case ObjectType::CustomProperty:
      return call(Kind<CustomProperty>());
    case ObjectType::Material:
      return call(Kind<Material>());
    default:
      return call(Kind<Composition>());
  }
}

String text(const std::string& utf8) { return String(utf8.c_str()); }

template <class T>
ModelKey model_key_of(const T& object) {
  return {veldra::ObjectTraits<T>::type, object.name().utf8()};
}

ModelKey model_key_of(const CustomProperty& property) {
  return {ObjectType::CustomProperty, property.name().utf8(), property.object_type()};
}

bool same(const ModelKey& left, const ModelKey& right) { return !(left < right || right < left); }

/// The stored object of that name; empty when there is none.
template <class T>
std::shared_ptr<T> find(const Library& library, const ModelKey& key) {
  std::vector<std::shared_ptr<T>> objects;
  library.get(objects);
  for (const auto& object : objects) {
    if (same(model_key_of(*object), key)) return object;
  }
  return nullptr;
}

/// Numbers that are the same on every machine.
class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}

  unsigned below(unsigned end) { return static_cast<unsigned>(engine_() % end); }
  bool chance(unsigned percent) { return below(100) < percent; }
  double length() { return 0.25 * (1 + below(12)); }

  template <class Container>
  auto pick(const Container& container) {
    return *std::next(container.begin(), below(static_cast<unsigned>(container.size())));
  }

  /// One of the names, or a new one that starts with `prefix`.
  std::string name(const std::set<std::string>& names, const std::string& prefix) {
    if (!names.empty() && chance(50)) return pick(names);
    return prefix + std::to_string(below(5));
  }

 private:
  std::mt19937 engine_;
};

/// A library, its model, and the reactor that they share.
struct Side {
  Side(const std::string& path_, Unit unit)
      : path(path_), library(Library::create(path_.c_str(), unit, "")), model(new_store(unit)) {
    library->setReactor(&reactor);
  }

  void reopen() {
    library.reset();
    library = Library::open(path.c_str(), false);
    library->setReactor(&reactor);
  }

  std::string path;
  RecordingReactor reactor;
  std::shared_ptr<Library> library;
  ModelStore model;
};

/// The names of the properties for a kind of object.
std::set<std::string> properties_for(const ModelStore& store, ObjectType object_type) {
  std::set<std::string> names;
  for (const PropertyName& property : store.properties) {
    if (property.first == object_type) names.insert(property.second);
  }
  return names;
}

template <class Objects>
std::set<std::string> names_of(const Objects& objects) {
  std::set<std::string> names;
  for (const auto& object : objects) names.insert(object.first);
  return names;
}

std::vector<ModelKey> keys_in(const ModelStore& store, ObjectType kind) {
  std::vector<ModelKey> keys;
  const auto add = [&](const std::set<std::string>& names) {
    for (const std::string& name : names) keys.push_back({kind, name});
  };
  switch (kind) {
    case ObjectType::Tag:
      add(store.tags);
      break;
    case ObjectType::MaterialType:
      add(store.types);
      break;
    case ObjectType::Layer:
      add(store.layers);
      break;
    case ObjectType::CustomProperty:
      for (const PropertyName& property : store.properties)
        keys.push_back({kind, property.second, property.first});
      break;
    case ObjectType::Material:
      add(names_of(store.materials));
      break;
    default:
      add(names_of(store.compositions));
  }
  return keys;
}

/// Draws the values of new and of changed objects.
class Drafts {
 public:
  Drafts(Random& random, const ModelStore& store) : random_(random), store_(store) {}

  MaterialDraft new_material() {
    MaterialDraft draft;
    draft.name = random_.name(names_of(store_.materials), "m");
    change(draft.values, 60);
    return draft;
  }

  MaterialDraft changed_material() {
    const auto stored = random_.pick(store_.materials);
    MaterialDraft draft{stored.first, stored.first, stored.second};
    change(draft.values, 30);
    if (random_.chance(20)) draft.name = random_.name(names_of(store_.materials), "m");
    return draft;
  }

  CompositionDraft new_composition() {
    CompositionDraft draft;
    draft.name = random_.name(names_of(store_.compositions), "c");
    change(draft, 60);
    return draft;
  }

  CompositionDraft changed_composition() {
    const auto stored = random_.pick(store_.compositions);
    CompositionDraft draft;
    draft.stored_name = draft.name = stored.first;
    draft.values = stored.second;
    change(draft, 30);
    if (random_.chance(20)) draft.name = random_.name(names_of(store_.compositions), "c");
    return draft;
  }

 private:
  std::vector<std::string> tags() {
    std::vector<std::string> tags(random_.below(4));
    for (std::string& tag : tags) tag = random_.name(store_.tags, "t");
    return tags;
  }

  std::optional<std::string> layer() {
    if (random_.chance(40)) return std::nullopt;
    return random_.name(store_.layers, "l");
  }

  Values custom_values(ObjectType object_type) {
    Values values;
    for (unsigned i = random_.below(3); i != 0; --i) {
      values[random_.name(properties_for(store_, object_type), "p")] =
          "v" + std::to_string(random_.below(9));
    }
    return values;
  }

  std::optional<std::string> code() {
    if (random_.chance(50)) return std::nullopt;
    return "k" + std::to_string(random_.below(6));
  }

  std::set<double> thicknesses() {
    std::set<double> thicknesses;
    for (unsigned i = random_.below(4); i != 0; --i) thicknesses.insert(random_.length());
    return thicknesses;
  }

  void change(MaterialValues& values, unsigned percent) {
    if (random_.chance(percent)) values.description = "d" + std::to_string(random_.below(9));
    if (random_.chance(percent)) values.code = code();
    if (random_.chance(percent)) values.tags = tags();
    if (random_.chance(percent))
      values.type = random_.chance(20) ? "" : random_.name(store_.types, "y");
    if (random_.chance(percent)) values.cut_layer = layer();
    if (random_.chance(percent)) values.thicknesses = thicknesses();
    if (random_.chance(percent)) values.custom_values = custom_values(ObjectType::Material);
  }

  void change(CompositionDraft& draft, unsigned percent) {
    CompositionValues& values = draft.values;
    if (random_.chance(percent)) values.description = "d" + std::to_string(random_.below(9));
    if (random_.chance(percent)) values.tags = tags();
    if (random_.chance(percent)) values.entity_layer = layer();
    if (random_.chance(percent)) values.min_thickness = random_.length();
    if (random_.chance(percent)) values.max_thickness = random_.length();
    if (random_.chance(10)) values.max_thickness = std::nullopt;
    if (random_.chance(percent)) values.custom_values = custom_values(ObjectType::Composition);
    if (values.layers.size() < 4) values.layers.resize(values.layers.size() + random_.below(3));
    for (LayerValues& layer : values.layers) {
      if (!layer.material.empty() && !random_.chance(percent)) continue;
      layer.thickness = random_.length();
      layer.material = layer_material(draft);
    }
  }

  std::string layer_material(CompositionDraft& draft) {
    if (!store_.materials.empty() && random_.chance(70))
      return random_.pick(store_.materials).first;
    if (!draft.new_material) draft.new_material = new_material();
    return kNewMaterial;
  }

  Random& random_;
  const ModelStore& store_;
};

/// Makes the objects of drafts. What they refer to is now the stored object of that name and now
/// a new one, which comes to the same.
class Maker {
 public:
  Maker(Random& random, const Library& library) : random_(random), library_(library) {}

  std::shared_ptr<Material> make(const MaterialDraft& draft) {
    const auto material = draft.stored_name ? library_.get<Material>(text(*draft.stored_name))
                                            : Material::create(text(draft.name));
    const MaterialValues& values = draft.values;
    material->name(text(draft.name));
    material->description(text(values.description));
    set_code(*material, values.code);
    set_tags(*material, values.tags);
    material->type(values.type.empty() ? nullptr : stored_or_new<MaterialType>(values.type));
    material->cut_layer(values.cut_layer ? stored_or_new<Layer>(*values.cut_layer) : nullptr);
    material->thicknesses(veldra::toModify) = values.thicknesses;
    set_custom_values(*material, values.custom_values);
    return material;
  }

  std::shared_ptr<Composition> make(const CompositionDraft& draft) {
    const auto composition = draft.stored_name ? library_.get<Composition>(text(*draft.stored_name))
                                               : Composition::create(text(draft.name));
    const CompositionValues& values = draft.values;
    composition->name(text(draft.name));
    composition->description(text(values.description));
    set_tags(*composition, values.tags);
    composition->entity_layer(values.entity_layer ? stored_or_new<Layer>(*values.entity_layer)
                                                  : nullptr);
    set_layers(*composition, draft);
    composition->variable_layer_min_thickness(values.min_thickness);
    composition->clear_variable_layer_max_thickness();
    if (values.max_thickness) composition->variable_layer_max_thickness(*values.max_thickness);
    set_custom_values(*composition, values.custom_values);
    return composition;
  }

 private:
  template <class T>
  std::shared_ptr<T> stored_or_new(const std::string& name) {
    const auto stored = random_.chance(50) ? library_.get<T>(text(name)) : nullptr;
    return stored ? stored : T::create(text(name));
  }

  static void set_code(Material& material, const std::optional<std::string>& code) {
    material.clear_code();
    if (code) material.code(text(*code));
  }

  template <class T>
  void set_tags(T& object, const std::vector<std::string>& tags) {
    object.tags(veldra::toModify).clear();
    for (const std::string& tag : tags) object.addTag(stored_or_new<Tag>(tag));
  }

  template <class T>
  static void set_custom_values(T& object, const Values& values) {
    object.clear_custom_values();
    for (const auto& value : values) object.custom_value(text(value.first), text(value.second));
  }

  void set_layers(Composition& composition, const CompositionDraft& draft) {
    const auto new_material = draft.new_material ? make(*draft.new_material) : nullptr;
    std::uint64_t place = 0;
    for (const LayerValues& values : draft.values.layers) {
      const auto material = values.material == kNewMaterial
                                ? new_material
                                : library_.get<Material>(text(values.material));
      const Composition::Layer layer(material, Material::Function::None, values.thickness);
      if (place == composition.layers().size()) composition.appendLayer(layer);
      composition.layer(place++, veldra::toModify) = layer;
    }
  }

  Random& random_;
  const Library& library_;
};

/// An object that is to be removed, as both sides know it.
struct Victim {
  ObjectKey key;
  ModelKey model;
};

/// Ascending, as the library takes them.
void sort_by_kind_and_id(std::vector<Victim>& victims) {
  const auto rank = [](const Victim& victim) {
    return std::make_pair(std::find(std::begin(kKinds), std::end(kKinds), victim.key.type),
                          victim.key.id);
  };
  std::sort(victims.begin(), victims.end(),
            [&](const Victim& left, const Victim& right) { return rank(left) < rank(right); });
}

/// Does the same at random to two libraries and to their models, and compares.
class RandomWalk {
 public:
  explicit RandomWalk(unsigned seed)
      : random_(seed),
        sides_{Side(folder_ / "millimetres.lib", Unit::Millimetres),
               Side(folder_ / "inches.lib", Unit::Inches)} {}

  void step() {
    const unsigned chosen = random_.below(2);
    side_ = &sides_[chosen];
    other_ = &sides_[1 - chosen];
    const unsigned number = random_.below(100);
    if (number < 8) return save_named();
    if (number < 16) return rename_named();
    if (number < 32) return save_material();
    if (number < 48) return save_composition();
    if (number < 52) return save_unchanged();
    if (number < 62) return remove_one();
    if (number < 68) return remove_several();
    if (number < 74) return purge();
    if (number < 78) return save_removed();
    if (number < 86) return save_foreign();
    if (number < 96) return copy();
    reopen();
  }

  /// The libraries hold what their models hold.
  void compare() const {
    for (const Side& side : sides_)
      ASSERT_EQ(text_of(stored_in(*side.library)), text_of(side.model)) << what_;
  }

  void expect_sound_files() const {
    for (const Side& side : sides_) EXPECT_EQ(damage(side.path), "");
  }

  /// What holds for every library, whatever is in it.
  void expect_laws() {
    for (const Side& side : sides_) {
      const auto direct = new_library();
      direct->copyAll(side.library);
      const std::string copied = text_of(stored_in(*direct));
      const auto between = new_library();
      between->copyAll(side.library);
      const auto far = new_library();
      expect_second_copy_writes_nothing(*far, between);
      EXPECT_EQ(text_of(stored_in(*far)), copied) << "a copy of a copy";
      expect_second_purge_removes_nothing(*far);
    }
  }

 private:
  std::shared_ptr<Library> new_library() {
    const std::string path = folder_ / (std::to_string(++libraries_) + ".lib");
    return Library::create(path.c_str(), Unit::Millimetres, "");
  }

  static std::string rows_of(const Library& library) { return dump(library.filename().utf8()); }

  static void expect_second_copy_writes_nothing(Library& library,
                                                const std::shared_ptr<Library>& source) {
    IdMapping mapping(&library);
    library.copyAll(source, mapping);
    const std::string once = rows_of(library);
    library.copyAll(source, mapping);
    EXPECT_EQ(rows_of(library), once);
  }

  static void expect_second_purge_removes_nothing(Library& library) {
    const std::set<ObjectType> kinds{ObjectType::Material, ObjectType::MaterialType,
                                     ObjectType::Layer, ObjectType::CustomProperty,
                                     ObjectType::Tag};
    library.purge(kinds);
    const std::string once = rows_of(library);
    std::map<ObjectKey, bool> result;
    library.purge(kinds, result);
    EXPECT_EQ(rows_of(library), once);
    for (const auto& entry : result) EXPECT_FALSE(entry.second);
    EXPECT_EQ(damage(library.filename().utf8()), "");
  }

  using Expected = std::function<void(ModelOperation&)>;
  using Call = std::function<void()>;

  void begin(const std::string& what) { what_ = what + " in " + side_->path; }

  /// Runs a call and what the model makes of it, and compares how they end and what they tell.
  /// Returns whether the call succeeds.
  bool run(const Call& call, const Expected& expected, bool keeps_what_was_done = false) {
    ModelStore attempted = side_->model;
    ModelOperation operation(attempted, decision_);
    ModelFailure failure;
    try {
      expected(operation);
    } catch (const ModelFailure& thrown) {
      failure = thrown;
    }
    side_->reactor.calls.clear();
    const Thrown thrown = thrown_by(call);
    EXPECT_EQ(thrown.type, failure.type) << what_ << ": " << thrown;
    EXPECT_EQ(thrown.text, failure.text) << what_;
    EXPECT_EQ(notifications(), notifications_of(operation.changed())) << what_;
    if (failure.type.empty() || keeps_what_was_done) side_->model = attempted;
    return failure.type.empty();
  }

  std::vector<std::string> notifications() const {
    std::vector<std::string> calls = side_->reactor.calls_starting_with("type");
    for (const std::string& call : side_->reactor.calls_starting_with("library"))
      calls.push_back(call);
    return calls;
  }

  static std::vector<std::string> notifications_of(const std::set<ObjectType>& changed) {
    std::vector<std::string> calls;
    for (const ObjectType kind : changed) calls.push_back("type " + kind_name(kind));
    if (!changed.empty()) calls.push_back("library");
    return calls;
  }

  void decide() {
    decision_ = static_cast<int>(random_.below(4));
    side_->reactor.on_conflict = [this](Library& library, ObjectType kind, String& name) {
      if (decision_ == 0)
        return side_->reactor.Library::Reactor::resolveNameConflict(library, kind, name);
      if (decision_ == Library::Reactor::Rename) name = text(name.utf8() + "'");
      return decision_;
    };
    what_ += ", decision " + std::to_string(decision_);
  }

  /// A save that fails must leave the object as it was.
  template <class T>
  void save(const std::shared_ptr<T>& object, const Expected& expected) {
    const std::string before = state_of(object);
    const bool saved = run([&] { side_->library->save(object); }, expected);
    if (!saved) {
      EXPECT_EQ(state_of(object), before) << what_;
    }
  }

  ModelKey named_key() {
    const ObjectType kind = random_.pick(std::vector<ObjectType>{
        ObjectType::Tag, ObjectType::MaterialType, ObjectType::Layer, ObjectType::CustomProperty});
    const ModelKey key{kind, "x" + std::to_string(random_.below(5))};
    if (kind != ObjectType::CustomProperty) return key;
    return {kind, "p" + std::to_string(random_.below(5)),
            random_.chance(50) ? ObjectType::Material : ObjectType::Composition};
  }

  template <class T>
  static std::shared_ptr<T> created(Kind<T>, const ModelKey& key) {
    return T::create(text(key.name));
  }

  static std::shared_ptr<CustomProperty> created(Kind<CustomProperty>, const ModelKey& key) {
    return CustomProperty::create(text(key.name), key.object_type);
  }

  void save_named() {
    const ModelKey key = named_key();
    begin("save a new " + kind_name(key.kind) + " " + key.name);
    for_kind(key.kind, [&](auto kind) {
      const auto object = created(kind, key);
      run([&] { side_->library->save(object); },
          [&](ModelOperation& operation) { operation.save_named(key); });
      EXPECT_EQ(object->library(), side_->library);
    });
  }

  void rename_named() {
    const ObjectType kind = random_.pick(std::vector<ObjectType>{
        ObjectType::MaterialType, ObjectType::Layer, ObjectType::CustomProperty});
    const std::vector<ModelKey> keys = keys_in(side_->model, kind);
    if (keys.empty()) return;
    const ModelKey key = random_.pick(keys);
    const std::string name =
        random_.chance(40) ? random_.pick(keys).name : "r" + std::to_string(random_.below(9));
    begin("rename " + kind_name(kind) + " " + key.name + " to " + name);
    if (kind == ObjectType::MaterialType) rename<MaterialType>(key, name);
    if (kind == ObjectType::Layer) rename<Layer>(key, name);
    if (kind == ObjectType::CustomProperty) rename<CustomProperty>(key, name);
  }

  template <class T>
  void rename(const ModelKey& key, const std::string& name) {
    const auto object = find<T>(*side_->library, key);
    object->name(text(name));
    save(object, [&](ModelOperation& operation) { operation.rename(key, name); });
  }

  template <class AnyDraft>
  void save_draft(const AnyDraft& draft) {
    begin("save " + draft.stored_name.value_or("new") + " as " + draft.name);
    decide();
    const auto object = Maker(random_, *side_->library).make(draft);
    save(object, [&](ModelOperation& operation) { operation.save(draft); });
  }

  void save_material() {
    Drafts drafts(random_, side_->model);
    const bool changes = !side_->model.materials.empty() && random_.chance(60);
    save_draft(changes ? drafts.changed_material() : drafts.new_material());
  }

  void save_composition() {
    Drafts drafts(random_, side_->model);
    const bool changes = !side_->model.compositions.empty() && random_.chance(60);
    save_draft(changes ? drafts.changed_composition() : drafts.new_composition());
  }

  std::vector<ModelKey> keys_of_some_kind(const ModelStore& store) {
    return keys_in(store, kKinds[random_.below(6)]);
  }

  void save_unchanged() {
    const std::vector<ModelKey> keys = keys_of_some_kind(side_->model);
    if (keys.empty()) return;
    const ModelKey key = random_.pick(keys);
    begin("save unchanged " + key.name);
    for_kind(key.kind, [&](auto kind) {
      using T = typename decltype(kind)::Class;
      const auto object = find<T>(*side_->library, key);
      run([&] { EXPECT_EQ(side_->library->save(object), object); }, [](ModelOperation&) {});
    });
  }

  Victim victim_of(const ModelKey& key) const {
    const unsigned id = for_kind(key.kind, [&](auto kind) {
      using T = typename decltype(kind)::Class;
      return find<T>(*side_->library, key)->id();
    });
    return {{key.kind, id}, key};
  }

  /// Lets the reactor refuse some of the objects.
  std::set<ObjectKey> refuse_some(const std::vector<Victim>& victims) {
    std::set<ObjectKey> refused;
    for (const Victim& victim : victims) {
      if (random_.chance(10)) refused.insert(victim.key);
    }
    side_->reactor.on_may_remove = [refused](Library&, const ObjectKey& key) {
      return static_cast<int>(refused.count(key));
    };
    return refused;
  }

  void remove_one() {
    const std::vector<ModelKey> keys = keys_of_some_kind(side_->model);
    if (keys.empty()) return;
    const Victim victim = victim_of(random_.pick(keys));
    const bool refused = !refuse_some({victim}).empty();
    const bool by_handle = random_.chance(50);
    begin("remove " + kind_name(victim.key.type) + " " + victim.model.name);
    for_kind(victim.key.type, [&](auto kind) {
      using T = typename decltype(kind)::Class;
      Library& library = *side_->library;
      const auto object = library.template get<T>(victim.key.id);
      bool removed = false;
      run(
          [&] {
            removed =
                by_handle ? library.remove(object) : library.template remove<T>(victim.key.id);
          },
          [&](ModelOperation& operation) {
            if (!refused) operation.remove(victim.model);
          },
          true);
      EXPECT_EQ(library.template get<T>(victim.key.id) == nullptr, removed) << what_;
      EXPECT_EQ(object->library() == nullptr, removed && by_handle) << what_;
      EXPECT_EQ(object->id(), victim.key.id);
    });
  }

  using Removed = std::map<ObjectKey, bool>;

  /// What the model makes of the removal of several objects.
  static void remove_all(ModelOperation& operation, const std::vector<Victim>& victims,
                         const std::set<ObjectKey>& refused, Removed& result) {
    for (const Victim& victim : victims) {
      bool removed = refused.count(victim.key) == 0;
      try {
        if (removed) operation.remove(victim.model);
      } catch (const ModelFailure& failure) {
        if (failure.type != "veldra::ObjectInUse") throw;
        removed = false;
      }
      result[victim.key] = removed;
    }
  }

  void run_removal(std::vector<Victim> victims, const std::function<void(Removed&)>& call) {
    sort_by_kind_and_id(victims);
    const std::set<ObjectKey> refused = refuse_some(victims);
    Removed result, expected;
    run([&] { call(result); },
        [&](ModelOperation& operation) { remove_all(operation, victims, refused, expected); },
        true);
    EXPECT_EQ(result, expected) << what_;
  }

  void remove_several() {
    std::vector<Victim> victims;
    const bool one_kind = random_.chance(40);
    const ObjectType only = kKinds[random_.below(6)];
    for (const ObjectType kind : kKinds) {
      if (one_kind && kind != only) continue;
      for (const ModelKey& key : keys_in(side_->model, kind)) {
        if (random_.chance(25)) victims.push_back(victim_of(key));
      }
    }
    const bool with_missing = random_.chance(15);
    if (with_missing) victims.push_back({{only, kMissing}, {only, "there is none"}});
    begin("remove " + std::to_string(victims.size()) + " objects");
    std::set<ObjectKey> keys;
    std::set<unsigned> ids;
    for (const Victim& victim : victims) {
      keys.insert(victim.key);
      ids.insert(victim.key.id);
    }
    run_removal(victims, [&](Removed& result) {
      if (!one_kind) return side_->library->remove(keys, result);
      for_kind(only, [&](auto kind) {
        using T = typename decltype(kind)::Class;
        side_->library->template remove<T>(ids, result);
      });
    });
  }

  void purge() {
    std::set<ObjectType> kinds;
    for (const ObjectType kind : kKinds) {
      if (random_.chance(30)) kinds.insert(kind);
    }
    const bool everything = random_.chance(10);
    if (everything) kinds.insert(std::begin(kKinds), std::end(kKinds));
    std::vector<Victim> victims;
    for (const ObjectType kind : kinds) {
      for (const ModelKey& key : keys_in(side_->model, kind)) victims.push_back(victim_of(key));
    }
    begin("purge " + std::to_string(kinds.size()) + " kinds");
    run_removal(victims, [&](Removed& result) {
      if (everything) return side_->library->purge(result);
      if (kinds.size() != 1) return side_->library->purge(kinds, result);
      for_kind(*kinds.begin(), [&](auto kind) {
        using T = typename decltype(kind)::Class;
        side_->library->template purge<T>(result);
      });
    });
  }

  /// Saves a changed object whose row somebody else has removed.
  void save_removed() {
    if (side_->model.compositions.empty()) return;
    const ModelKey key{ObjectType::Composition, random_.pick(side_->model.compositions).first};
    begin("save removed composition " + key.name);
    const auto object = find<Composition>(*side_->library, key);
    side_->reactor.on_may_remove = nullptr;
    run([&] { side_->library->remove<Composition>(object->id()); },
        [&](ModelOperation& operation) { operation.remove(key); });
    object->description("changed");
    const std::string before = state_of(object);
    run([&] { object->save(); },
        [](ModelOperation&) {
          throw ModelFailure{"veldra::ObjectNotFound", "Object not found"};
        });
    EXPECT_EQ(state_of(object), before) << what_;
  }

  void save_foreign() {
    const std::vector<ModelKey> keys = keys_of_some_kind(other_->model);
    if (keys.empty()) return;
    const ModelKey key = random_.pick(keys);
    begin("save foreign " + kind_name(key.kind) + " " + key.name);
    decide();
    for_kind(key.kind, [&](auto kind) {
      using T = typename decltype(kind)::Class;
      const auto object = find<T>(*other_->library, key);
      const std::string before = state_of(object);
      run([&] { EXPECT_EQ(side_->library->save(object)->library(), side_->library); },
          [&](ModelOperation& operation) { operation.copy(other_->model, key); });
      EXPECT_EQ(state_of(object), before) << what_;
    });
  }

  /// What is to be copied, in the order in which the source gives it.
  struct Choice {
    std::vector<ModelKey> models;
    std::set<ObjectKey> keys;
  };

  template <class T>
  void choose(Choice& choice, unsigned percent) {
    std::vector<std::shared_ptr<T>> all, chosen;
    other_->library->get(all);
    std::set<unsigned> ids;
    for (const auto& object : all) {
      if (random_.chance(percent)) ids.insert(object->id());
    }
    if (percent == 100) {
      chosen = all;
    } else {
      other_->library->get(chosen, ids);
    }
    for (const auto& object : chosen) {
      choice.models.push_back(model_key_of(*object));
      choice.keys.insert({veldra::ObjectTraits<T>::type, object->id()});
    }
  }

  static std::set<unsigned> ids_of(const std::set<ObjectKey>& keys) {
    std::set<unsigned> ids;
    for (const ObjectKey& key : keys) ids.insert(key.id);
    return ids;
  }

  void copy() {
    const unsigned form = random_.below(3);
    const ObjectType only = kKinds[random_.below(6)];
    Choice choice;
    for (const ObjectType kind : kKinds) {
      if (form == 1 && kind != only) continue;
      for_kind(kind, [&](auto named) {
        choose<typename decltype(named)::Class>(choice, form == 0 ? 100 : 25);
      });
    }
    begin("copy " + std::to_string(choice.keys.size()) + " objects, form " + std::to_string(form));
    decide();
    IdMapping mapping(side_->library.get());
    std::map<ModelKey, std::string> copied;
    run([&] { call_copy(form, only, choice, mapping); },
        [&](ModelOperation& operation) {
          for (const ModelKey& key : choice.models) operation.copy(other_->model, key);
          copied = operation.copied();
        });
    if (!copied.empty()) compare_mapping(mapping, copied);
  }

  void call_copy(unsigned form, ObjectType only, const Choice& choice, IdMapping& mapping) {
    Library& library = *side_->library;
    if (form == 0) return library.copyAll(other_->library, mapping);
    if (form == 2) return library.copy(other_->library, choice.keys, mapping);
    for_kind(only, [&](auto kind) {
      using T = typename decltype(kind)::Class;
      std::set<unsigned> ids = ids_of(choice.keys);
      ids.insert(kMissing);
      library.template copy<T>(other_->library, ids, mapping);
    });
  }

  template <class T>
  void compare_names(const IdMapping& mapping, const std::map<ModelKey, std::string>& copied) {
    for (const auto& entry : copied) {
      if (entry.first.kind != veldra::ObjectTraits<T>::type) continue;
      const auto original = find<T>(*other_->library, entry.first);
      IdMapping::Value value;
      ASSERT_TRUE(
          mapping.compute({{entry.first.kind, original->id()}, other_->library.get()}, value))
          << what_ << ": " << entry.first.name;
      EXPECT_EQ(side_->library->get<T>(value.id)->name().utf8(), entry.second) << what_;
    }
  }

  void compare_mapping(const IdMapping& mapping, const std::map<ModelKey, std::string>& copied) {
    compare_names<Material>(mapping, copied);
    compare_names<Composition>(mapping, copied);
  }

  void reopen() {
    begin("reopen");
    side_->reopen();
  }

  Random random_;
  TemporaryFolder folder_;
  Side sides_[2];
  Side* side_ = &sides_[0];
  Side* other_ = &sides_[1];
  int decision_ = 0;
  int libraries_ = 0;
  std::string what_;
};

/// The seeds of the run, or the one that the environment asks for.
std::vector<unsigned> seeds() {
  if (const char* seed = std::getenv("VELDRA_TEST_SEED"))
    return {static_cast<unsigned>(std::strtoul(seed, nullptr, 10))};
  return {1, 2, 3, 4, 5, 6};
}

void walk(unsigned seed) {
  RandomWalk walk(seed);
  for (int step = 0; step != kSteps; ++step) {
    SCOPED_TRACE("VELDRA_TEST_SEED=" + std::to_string(seed) + ", step " + std::to_string(step));
    walk.step();
    walk.compare();
    if (step % kStepsBetweenLaws == 0) walk.expect_laws();
    if (testing::Test::HasFailure()) return;
  }
  walk.expect_sound_files();
}

/// Thousands of commits wait for the disk most of the time, and nothing here is about the disk.
void keep_files_in_memory() {
  constexpr const char* kMemory = "/dev/shm";
  if (::access(kMemory, W_OK) == 0) ::setenv("TMPDIR", kMemory, 0);
}

TEST(ModelRandom, libraries_do_what_their_models_do) {
  keep_files_in_memory();
  for (const unsigned seed : seeds()) {
    walk(seed);
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace veldra_tests
