// SPDX-License-Identifier: GPL-2.0-or-later
//
// The input is a sequence of operations on two libraries, which are compared with a plain model in
// memory after each step: tags, layers, materials and compositions by their names, with comments
// and references, also within a transaction that is kept or rolled back.

#include "reliability/fault_vfs.hpp"
#include "support/database.hpp"
#include "support/temporary.hpp"
#include "support/thrown.hpp"

#include <veldra/veldra.hpp>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <map>
#include <set>

namespace {

using veldra::Composition;
using veldra::Layer;
using veldra::Library;
using veldra::Material;
using veldra::ObjectType;
using veldra::String;
using veldra::Tag;
using veldra::toModify;
using veldra_tests::Thrown;

void expect(bool condition, const char* what) {
  if (condition) return;
  std::cerr << what << std::endl;
  std::abort();
}

// Bytes as decisions.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), end_(data + size) {}

  bool more() const { return data_ != end_; }
  unsigned next(unsigned limit) { return more() ? *data_++ % limit : 0; }
  std::string name() { return std::string(1, static_cast<char>('a' + next(5))); }

 private:
  const std::uint8_t* data_;
  const std::uint8_t* end_;
};

// What a library must hold, by name.
struct Model {
  struct MaterialModel {
    std::string comments;
    std::vector<std::string> tags;
    std::string layer;  // empty: none
    bool operator==(const MaterialModel& other) const {
      return comments == other.comments && tags == other.tags && layer == other.layer;
    }
  };

  struct CompositionModel {
    std::string comments;
    std::vector<std::string> materials;
    bool operator==(const CompositionModel& other) const {
      return comments == other.comments && materials == other.materials;
    }
  };

  std::set<std::string> tags;
  std::set<std::string> layers;
  std::map<std::string, MaterialModel> materials;
  std::map<std::string, CompositionModel> compositions;

  bool operator==(const Model& other) const {
    return tags == other.tags && layers == other.layers && materials == other.materials &&
           compositions == other.compositions;
  }

  bool uses_tag(const std::string& tag) const {
    for (const auto& material : materials) {
      for (const auto& name : material.second.tags) {
        if (name == tag) return true;
      }
    }
    return false;
  }

  bool uses_layer(const std::string& layer) const {
    for (const auto& material : materials) {
      if (material.second.layer == layer) return true;
    }
    return false;
  }

  bool uses_material(const std::string& material) const {
    for (const auto& composition : compositions) {
      for (const auto& name : composition.second.materials) {
        if (name == material) return true;
      }
    }
    return false;
  }

  void save(const std::string& name, const MaterialModel& material) {
    materials[name] = material;
    save_references(material);
  }

  void save_references(const MaterialModel& material) {
    tags.insert(material.tags.begin(), material.tags.end());
    if (!material.layer.empty()) layers.insert(material.layer);
  }

  // What a library has after it was copied here, and its objects have overwritten those of ours.
  void merge(const Model& source) {
    tags.insert(source.tags.begin(), source.tags.end());
    layers.insert(source.layers.begin(), source.layers.end());
    for (const auto& material : source.materials) materials[material.first] = material.second;
    for (const auto& each : source.compositions) compositions[each.first] = each.second;
  }
};

std::string other_name(const std::string& name) { return name + "'"; }

// Gives the same answer to every question.
class Reactor : public Library::Reactor {
 public:
  int decision = Overwrite;
  int resolveNameConflict(Library&, ObjectType, String& name) override {
    if (decision == Rename) name = other_name(name.utf8()).c_str();
    return decision;
  }
};

// The name under which a new object is to be found, when names are decided about so.
template <class Objects>
std::string saved_name(const Objects& stored, std::string name, int decision) {
  while (decision == Library::Reactor::Rename && stored.count(name) != 0) name = other_name(name);
  return name;
}

template <class T>
std::set<std::string> names(const Library& library) {
  std::vector<std::shared_ptr<T>> objects;
  library.get<T>(objects);
  std::set<std::string> names;
  for (const auto& object : objects) names.insert(object->name().utf8());
  expect(names.size() == objects.size(), "a name is there twice");
  expect(library.count<T>() == objects.size(), "the count is not the number of objects");
  return names;
}

Model read_model(const Library& library) {
  Model model;
  model.tags = names<Tag>(library);
  model.layers = names<Layer>(library);
  std::vector<std::shared_ptr<Material>> materials;
  library.get<Material>(materials);
  for (const auto& material : materials) {
    expect(!material->isDirty() && material->library().get() == &library, "not clean or not ours");
    Model::MaterialModel values;
    values.comments = material->comments().utf8();
    for (const auto& tag : material->tags()) values.tags.push_back(tag->name().utf8());
    if (material->cut_layer()) values.layer = material->cut_layer()->name().utf8();
    model.materials[material->name().utf8()] = values;
  }
  std::vector<std::shared_ptr<Composition>> compositions;
  library.get<Composition>(compositions);
  for (const auto& composition : compositions) {
    Model::CompositionModel values;
    values.comments = composition->comments().utf8();
    for (const auto& layer : composition->layers()) {
      values.materials.push_back(layer.material()->name().utf8());
    }
    model.compositions[composition->name().utf8()] = values;
  }
  return model;
}

// A library beside its model.
class Pair {
 public:
  explicit Pair(const std::string& path) : name_(veldra_tests::FaultVfs::name_of(path)) {
    reopen();
  }

  void reopen() {
    roll_back();
    library_.reset();
    library_ = Library::create(name_.c_str(), veldra::Unit::Millimetres, "");
    library_->setReactor(&reactor_);
  }

  void save_tag(const std::string& name) {
    library_->save(Tag::create(name.c_str()));
    model_.tags.insert(name);
  }

  void save_layer(const std::string& name) {
    library_->save(Layer::create(name.c_str()));
    model_.layers.insert(name);
  }

  void save_material(const std::string& name, const Model::MaterialModel& values, int decision) {
    const auto material = Material::create(name.c_str());
    fill(*material, values);
    save(material, model_.materials, values, decision);
    // Also what an unused object refers to.
    model_.save_references(values);
  }

  // Of the materials that there are.
  void save_composition(const std::string& name, Model::CompositionModel values, int decision) {
    const auto composition = Composition::create(name.c_str());
    fill(*composition, values);
    save(composition, model_.compositions, values, decision);
  }

  void change_material(const std::string& name, const Model::MaterialModel& values) {
    const auto material = library_->get<Material>(String(name.c_str()));
    expect((material != nullptr) == (model_.materials.count(name) != 0), "there or not there");
    if (material == nullptr) return;
    material->tags(toModify).clear();
    material->cut_layer(nullptr);
    fill(*material, values);
    library_->save(material);
    model_.save(name, values);
  }

  // The first layer stays: a composition whose only layer goes has no core any more.
  void change_composition(const std::string& name, Model::CompositionModel values) {
    const auto composition = library_->get<Composition>(String(name.c_str()));
    expect((composition != nullptr) == (model_.compositions.count(name) != 0),
           "there or not there");
    if (composition == nullptr) return;
    while (composition->layers().size() > 1) {
      composition->removeLayer(composition->layers().size() - 1);
    }
    fill(*composition, values);
    library_->save(composition);
    auto& stored = model_.compositions[name];
    if (!stored.materials.empty()) {
      values.materials.insert(values.materials.begin(), stored.materials.front());
    }
    stored = values;
  }

  template <class T, class Objects>
  void remove(const std::string& name, Objects& of_model, bool in_use) {
    const auto object = library_->get<T>(String(name.c_str()));
    expect((object != nullptr) == (of_model.count(name) != 0), "there or not there");
    if (object == nullptr) return;
    const Thrown thrown = veldra_tests::thrown_by([&] { library_->remove(object); });
    expect(thrown == (in_use ? "veldra::ObjectInUse" : ""), "removed or in use");
    if (!in_use) of_model.erase(name);
  }

  void remove_tag(const std::string& name) {
    remove<Tag>(name, model_.tags, model_.uses_tag(name));
  }

  void remove_layer(const std::string& name) {
    remove<Layer>(name, model_.layers, model_.uses_layer(name));
  }

  void remove_material(const std::string& name) {
    remove<Material>(name, model_.materials, model_.uses_material(name));
  }

  void remove_composition(const std::string& name) {
    remove<Composition>(name, model_.compositions, false);
  }

  void purge_tags_and_layers() {
    library_->purge({ObjectType::Tag, ObjectType::Layer});
    keep_used();
  }

  void purge() {
    library_->purge();
    model_ = Model();
  }

  // With every object; the reactor overwrites.
  void copy_all(const Pair& source) {
    reactor_.decision = Library::Reactor::Overwrite;
    library_->copyAll(source.library_);
    model_.merge(source.model_);
  }

  // Begins a transaction; when there is one, it ends.
  void begin_or_end(bool to_keep) {
    if (transaction_ == nullptr) {
      transaction_.reset(new Library::Transaction(*library_));
      model_before_ = model_;
      return;
    }
    if (!to_keep) return roll_back();
    transaction_->commit();
    transaction_.reset();
  }

  void compare() const { expect(read_model(*library_) == model_, "the library is not its model"); }

 private:
  template <class T, class Objects>
  void save(const std::shared_ptr<T>& object, Objects& of_model,
            const typename Objects::mapped_type& values, int decision) {
    const std::string name = saved_name(of_model, object->name().utf8(), decision);
    reactor_.decision = decision;
    library_->save(object);
    expect(object->id() != 0 && !object->isDirty(), "saved, but dirty or without an id");
    if (decision == Library::Reactor::UseExisting) {
      of_model.insert({name, values});
    } else {
      of_model[name] = values;
    }
  }

  void roll_back() {
    if (transaction_ == nullptr) return;
    transaction_.reset();
    model_ = model_before_;
  }

  static void fill(Material& material, const Model::MaterialModel& values) {
    material.comments(values.comments.c_str());
    for (const auto& tag : values.tags) material.addTag(Tag::create(tag.c_str()));
    if (!values.layer.empty()) material.cut_layer(Layer::create(values.layer.c_str()));
  }

  // Takes materials out of the values that are not there.
  void fill(Composition& composition, Model::CompositionModel& values) {
    composition.comments(values.comments.c_str());
    const auto wanted = std::move(values.materials);
    values.materials.clear();
    for (const auto& name : wanted) {
      const auto material = library_->get<Material>(String(name.c_str()));
      if (material == nullptr) continue;
      composition.appendLayer(Composition::Layer(material, Material::Function::None, 1.0));
      values.materials.push_back(name);
    }
  }

  void keep_used() {
    for (auto tag = model_.tags.begin(); tag != model_.tags.end();) {
      tag = model_.uses_tag(*tag) ? std::next(tag) : model_.tags.erase(tag);
    }
    for (auto layer = model_.layers.begin(); layer != model_.layers.end();) {
      layer = model_.uses_layer(*layer) ? std::next(layer) : model_.layers.erase(layer);
    }
  }

  std::string name_;
  Reactor reactor_;
  std::shared_ptr<Library> library_;
  std::unique_ptr<Library::Transaction> transaction_;
  Model model_;
  Model model_before_;  // as of the beginning of the transaction
};

Model::MaterialModel values_from(Input& input) {
  Model::MaterialModel values;
  values.comments = input.name();
  for (unsigned count = input.next(4); count != 0; --count) values.tags.push_back(input.name());
  if (input.next(2) != 0) values.layer = input.name();
  return values;
}

Model::CompositionModel composition_from(Input& input) {
  Model::CompositionModel values;
  values.comments = input.name();
  for (unsigned count = input.next(4); count != 0; --count) {
    values.materials.push_back(input.name());
  }
  return values;
}

int decision_from(Input& input) { return 1 + static_cast<int>(input.next(3)); }

void step(Pair& library, const Pair& other, Input& input) {
  switch (input.next(16)) {
    case 0:
      return library.save_tag(input.name());
    case 1:
      return library.save_layer(input.name());
    case 2:
    case 3: {
      const std::string name = input.name();
      const int decision = decision_from(input);
      return library.save_material(name, values_from(input), decision);
    }
    case 4:
    case 5: {
      const std::string name = input.name();
      return library.change_material(name, values_from(input));
    }
    case 6:
      return library.remove_tag(input.name());
    case 7:
      return library.remove_layer(input.name());
    case 8:
      return library.remove_material(input.name());
    case 9:
      return input.next(4) == 0 ? library.purge() : library.purge_tags_and_layers();
    case 10:
      return library.copy_all(other);
    case 11:
      return library.reopen();
    case 12: {
      const std::string name = input.name();
      const int decision = decision_from(input);
      return library.save_composition(name, composition_from(input), decision);
    }
    case 13: {
      const std::string name = input.name();
      return library.change_composition(name, composition_from(input));
    }
    case 14:
      return library.remove_composition(input.name());
    default:
      return library.begin_or_end(input.next(2) == 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const veldra_tests::TemporaryFolder folder;
  Pair left(folder / "left.lib");
  Pair right(folder / "right.lib");
  Input input(data, size);
  const Thrown thrown = veldra_tests::thrown_by([&] {
    while (input.more()) {
      const bool to_left = input.next(2) == 0;
      step(to_left ? left : right, to_left ? right : left, input);
      left.compare();
      right.compare();
    }
    for (Pair* library : {&left, &right}) {
      library->reopen();
      library->compare();
    }
  });
  if (!(thrown == "")) std::cerr << thrown << std::endl;
  expect(thrown == "", "something was thrown");
  for (const char* name : {"left.lib", "right.lib"}) {
    expect(veldra_tests::damage(folder / name).empty(), "the file is damaged");
  }
  return 0;
}
