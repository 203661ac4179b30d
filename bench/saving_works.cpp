// SPDX-License-Identifier: GPL-2.0-or-later
#include "work.hpp"

#include <cstdlib>

namespace veldra_bench {

namespace {

using veldra::Composition;
using veldra::Material;

enum { single_saves = 20 };

struct PlainMaps : plain_maps {
  explicit PlainMaps(const plain_maps& maps) : plain_maps(maps) {}
  PlainMaps(const PlainMaps&) = delete;
  PlainMaps& operator=(const PlainMaps&) = delete;
  ~PlainMaps() { plain_free_maps(this); }
};

struct PlainMaterials {
  PlainMaterials() = default;
  PlainMaterials(const PlainMaterials&) = delete;
  PlainMaterials& operator=(const PlainMaterials&) = delete;
  ~PlainMaterials() { clear(); }

  void clear() {
    for (auto& material : items) plain_free_material(&material);
    items.clear();
  }

  std::vector<plain_material> items;
};

/// One composition whose layers are new materials: the way to save them in one transaction.
class BulkSave {
 public:
  explicit BulkSave(Workshop& workshop) : workshop_(workshop) {}
  ~BulkSave() { clear(); }

  void prepare() {
    clear();
    pair_ = new_pair(workshop_);
    maps_ = std::make_unique<PlainMaps>(maps_of_new_library());
    prepare_plain();
    prepare_veldra();
  }

  void veldra(Digest* digest) {
    pair_->veldra->save(composition_);
    add_rows(digest, pair_->veldra_path);
  }

  void plain(Digest* digest) {
    plain_save_composition(pair_->plain.get(), &plain_composition_, maps_.get());
    add_rows(digest, pair_->plain_path);
  }

 private:
  void prepare_plain() {
    plain_composition_ = plain_composition{};
    plain_composition_.id = 1;
    plain_composition_.name = plain_utf16("All materials");
    plain_composition_.type = 1;
    auto& layers = plain_composition_.layers;
    layers.size = layers.room = workshop_.materials();
    layers.items = static_cast<plain_composition_layer*>(
        std::calloc(layers.size, sizeof(plain_composition_layer)));
    for (unsigned i = 0; i != layers.size; ++i) {
      layers.items[i].material = new_sample_material(i + 1);
      layers.items[i].thickness = 1.0;
    }
  }

  void prepare_veldra() {
    const References references = new_references(*pair_->veldra);
    composition_ = Composition::create(plain_composition_.name);
    composition_->type(Composition::Type::Wall);
    for (std::size_t i = 0; i != plain_composition_.layers.size; ++i) {
      composition_->appendLayer(
          {make_material(*plain_composition_.layers.items[i].material, references),
           Material::Function::None, 1.0});
    }
  }

  void clear() {
    plain_free_composition(&plain_composition_);
    plain_composition_ = plain_composition{};
    composition_.reset();
    pair_.reset();
  }

  Workshop& workshop_;
  std::unique_ptr<Pair> pair_;
  std::unique_ptr<PlainMaps> maps_;
  plain_composition plain_composition_{};
  std::shared_ptr<Composition> composition_;
};

/// Materials one by one into a full library that has all they refer to.
class SingleSaves {
 public:
  explicit SingleSaves(Workshop& workshop)
      : pair_(copies_of(workshop, workshop.sample().path())),
        references_(stored_references(*pair_->veldra)),
        maps_(workshop.sample().maps()),
        next_(workshop.materials() + 1) {}

  void prepare() {
    plain_materials_.clear();
    materials_.clear();
    for (int i = 0; i != single_saves; ++i) {
      plain_materials_.items.push_back(sample_material(next_++));
      materials_.push_back(make_material(plain_materials_.items.back(), references_));
    }
  }

  void veldra(Digest* digest) {
    for (const auto& material : materials_) pair_->veldra->save(material);
    add_rows(digest, pair_->veldra_path);
  }

  void plain(Digest* digest) {
    for (const auto& material : plain_materials_.items) {
      plain_save_material(pair_->plain.get(), &material, &maps_);
    }
    add_rows(digest, pair_->plain_path);
  }

 private:
  std::unique_ptr<Pair> pair_;
  References references_;
  PlainMaps maps_;
  unsigned next_;
  PlainMaterials plain_materials_;
  std::vector<std::shared_ptr<Material>> materials_;
};

/// Materials that are in the library already, changed and saved one by one.
class Updates {
 public:
  explicit Updates(Workshop& workshop)
      : pair_(copies_of(workshop, workshop.sample().path())), maps_(workshop.sample().maps()) {
    Lottery lottery;
    for (int i = 0; i != single_saves; ++i) {
      const unsigned number = lottery.draw(1, workshop.materials());
      plain_materials_.items.push_back(sample_material(number));
      materials_.push_back(pair_->veldra->get<Material>(plain_mapped(&maps_.materials, number)));
    }
  }

  void prepare() {
    const std::string comments = "Checked " + std::to_string(++round_);
    for (auto& material : plain_materials_.items) {
      std::free(material.comments);
      material.comments = plain_utf16(comments.c_str());
    }
    for (const auto& material : materials_) material->comments(comments.c_str());
  }

  void veldra(Digest* digest) {
    for (const auto& material : materials_) pair_->veldra->save(material);
    add_rows(digest, pair_->veldra_path);
  }

  void plain(Digest* digest) {
    for (const auto& material : plain_materials_.items) {
      plain_update_material(pair_->plain.get(), &material, &maps_);
    }
    add_rows(digest, pair_->plain_path);
  }

 private:
  std::unique_ptr<Pair> pair_;
  PlainMaps maps_;
  PlainMaterials plain_materials_;
  std::vector<std::shared_ptr<Material>> materials_;
  int round_ = 0;
};

template <class State>
Work work_of(Workshop& workshop) {
  auto state = std::make_shared<State>(workshop);
  return {[state](Digest* digest) { state->veldra(digest); },
          [state](Digest* digest) { state->plain(digest); }, [state] { state->prepare(); }};
}

unsigned single_items(const Workshop&) { return single_saves; }

}  // namespace

std::vector<TimedWork> saving_works() {
  return {
      {"save_new_materials",
       "new materials with all they refer to, in one transaction, per material", 1.25,
       [](const Workshop& workshop) { return workshop.materials(); }, work_of<BulkSave>},
      {"save_one_material", "a new material in a transaction of its own", 0, single_items,
       work_of<SingleSaves>},
      {"update_one_material", "a changed material in a transaction of its own", 0, single_items,
       work_of<Updates>},
  };
}

}  // namespace veldra_bench
