// The input is a sequence of operations on two libraries, which are compared with a plain model in
// memory after each step: names, texts and references, by ids.

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

// What a library must hold: tags, layers and materials, by name.
struct Model {
  struct MaterialModel {
    std::string comments;
    std::vector<std::string> tags;
    std::string layer;  // empty: none
    bool operator==(const MaterialModel& other) const {
      return comments == other.comments && tags == other.tags && layer == other.layer;
    }
  };

  std::set<std::string> tags;
  std::set<std::string> layers;
  std::map<std::string, MaterialModel> materials;

  bool operator==(const Model& other) const {
    return tags == other.tags && layers == other.layers && materials == other.materials;
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

  void save(const std::string& name, const MaterialModel& material) {
    materials[name] = material;
    tags.insert(material.tags.begin(), material.tags.end());
    if (!material.layer.empty()) layers.insert(material.layer);
  }

  void purge() {
    materials.clear();
    tags.clear();
    layers.clear();
  }
};

// Decides as the model does: an object that is overwritten has the new values.
class Reactor : public Library::Reactor {
 public:
  int decision = Overwrite;
  int resolveNameConflict(Library&, ObjectType, String&) override { return decision; }
};

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
  return model;
}

// A library beside its model.
class Pair {
 public:
  explicit Pair(const std::string& path) : name_(veldra_tests::FaultVfs::name_of(path)) {
    reopen();
  }

  void reopen() {
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

  void save_material(const std::string& name, Model::MaterialModel values, int decision) {
    const auto material = Material::create(name.c_str());
    fill(*material, values);
    reactor_.decision = decision;
    const bool taken = model_.materials.count(name) != 0;
    library_->save(material);
    expect(material->id() != 0 && !material->isDirty(), "saved, but dirty or without an id");
    if (taken && decision == Library::Reactor::UseExisting) {
      // What the unused object refers to is saved all the same.
      const auto stored = model_.materials[name];
      model_.save(name, values);
      values = stored;
    }
    model_.save(name, values);
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

  template <class T>
  void remove(const std::string& name, std::set<std::string>& of_model, bool in_use) {
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
    const auto material = library_->get<Material>(String(name.c_str()));
    expect((material != nullptr) == (model_.materials.count(name) != 0), "there or not there");
    if (material == nullptr) return;
    library_->remove(material);
    model_.materials.erase(name);
  }

  void purge_tags_and_layers() {
    library_->purge({ObjectType::Tag, ObjectType::Layer});
    keep_used();
  }

  void purge() {
    library_->purge();
    model_.purge();
  }

  // With every object; the reactor overwrites.
  void copy_all(const Pair& source) {
    reactor_.decision = Library::Reactor::Overwrite;
    library_->copyAll(source.library_);
    model_.tags.insert(source.model_.tags.begin(), source.model_.tags.end());
    model_.layers.insert(source.model_.layers.begin(), source.model_.layers.end());
    for (const auto& material : source.model_.materials) {
      model_.save(material.first, material.second);
    }
  }

  void compare() const { expect(read_model(*library_) == model_, "the library is not its model"); }

 private:
  static void fill(Material& material, const Model::MaterialModel& values) {
    material.comments(values.comments.c_str());
    for (const auto& tag : values.tags) material.addTag(Tag::create(tag.c_str()));
    if (!values.layer.empty()) material.cut_layer(Layer::create(values.layer.c_str()));
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
  Model model_;
};

Model::MaterialModel values_from(Input& input) {
  Model::MaterialModel values;
  values.comments = input.name();
  for (unsigned count = input.next(4); count != 0; --count) values.tags.push_back(input.name());
  if (input.next(2) != 0) values.layer = input.name();
  return values;
}

void step(Pair& library, const Pair& other, Input& input) {
  switch (input.next(12)) {
    case 0:
      return library.save_tag(input.name());
    case 1:
      return library.save_layer(input.name());
    case 2:
    case 3: {
      const std::string name = input.name();
      const int decision = 1 + static_cast<int>(input.next(2));
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
    default:
      return library.reopen();
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
  });
  if (!(thrown == "")) std::cerr << thrown << std::endl;
  expect(thrown == "", "something was thrown");
  expect(veldra_tests::damage(folder / "left.lib").empty(), "the file is damaged");
  return 0;
}
