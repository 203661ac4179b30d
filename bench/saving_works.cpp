// SPDX-License-Identifier: GPL-2.0-or-later
#include "work.hpp"

#include <algorithm>
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

/// Where many materials are saved: in a new library, beside those of a full one, or over them.
enum class Into { New, Full, UseExisting, Overwrite };

/// Answers every name that is taken in the same way.
class Answer : public veldra::Library::Reactor {
 public:
  explicit Answer(Decision decision) : decision_(decision) {}

  int resolveNameConflict(veldra::Library&, veldra::ObjectType, veldra::String&) override {
    return decision_;
  }

 private:
  Decision decision_;
};

/// One composition whose layers are new materials: the way to save them in one transaction.
class BulkSave {
 public:
  BulkSave(Workshop& workshop, Into into)
      : workshop_(workshop),
        into_(into),
        answer_(into == Into::Overwrite ? Answer::Overwrite : Answer::UseExisting) {}
  BulkSave(const BulkSave&) = delete;
  BulkSave& operator=(const BulkSave&) = delete;
  ~BulkSave() { clear(); }

  static unsigned added_to_full(const Workshop& workshop) {
    return std::min(workshop.materials(), 1000u);
  }

  void prepare() {
    clear();
    if (into_ == Into::New) {
      pair_ = new_pair(workshop_);
    } else if (pair_ == nullptr || into_ != Into::Full) {
      pair_.reset();
      pair_ = copies_of(workshop_, workshop_.sample().path());
    }
    pair_->veldra->setReactor(&answer_);
    maps_ = std::make_unique<PlainMaps>(maps());
    prepare_plain();
    prepare_veldra();
  }

  void veldra(Digest* digest) {
    pair_->veldra->save(composition_);
    add_rows(digest, pair_->veldra_path);
  }

  void plain(Digest* digest) {
    plain_library* library = pair_->plain.get();
    if (is_taken()) {
      plain_save_taken(library, &plain_composition_, maps_.get(),
                       into_ == Into::Overwrite ? PLAIN_OVERWRITE : PLAIN_USE_EXISTING);
    } else {
      plain_save_composition(library, &plain_composition_, maps_.get());
    }
    add_rows(digest, pair_->plain_path);
  }

 private:
  /// Materials whose names are taken are not known by their numbers.
  plain_maps maps() {
    if (into_ == Into::New) return maps_of_new_library();
    plain_maps maps = workshop_.sample().maps();
    if (is_taken()) maps.materials.size = 0;
    return maps;
  }

  bool is_taken() const { return into_ == Into::UseExisting || into_ == Into::Overwrite; }

  /// A name may be taken, but no code.
  static void give_other_code(plain_material& material) {
    std::free(material.code);
    material.code = plain_utf16(("N-" + std::to_string(material.id)).c_str());
  }

  unsigned count() const {
    return into_ == Into::Full ? added_to_full(workshop_) : workshop_.materials();
  }

  /// The number of the first material, which is a new one where they are added.
  unsigned first() {
    if (into_ != Into::Full) return 1;
    next_ += count();
    return workshop_.materials() + 1 + next_ - count();
  }

  void prepare_plain() {
    plain_composition_ = plain_composition{};
    plain_composition_.id = 1;
    plain_composition_.name = plain_utf16(("All materials " + std::to_string(next_)).c_str());
    plain_composition_.type = 1;
    auto& layers = plain_composition_.layers;
    layers.size = layers.room = count();
    layers.items = static_cast<plain_composition_layer*>(
        std::calloc(layers.size, sizeof(plain_composition_layer)));
    const unsigned number = first();
    for (unsigned i = 0; i != layers.size; ++i) {
      layers.items[i].material = new_sample_material(number + i);
      if (is_taken()) give_other_code(*layers.items[i].material);
      layers.items[i].thickness = 1.0;
    }
  }

  void prepare_veldra() {
    const References references =
        into_ == Into::New ? new_references(*pair_->veldra) : stored_references(*pair_->veldra);
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
    maps_.reset();
    if (into_ == Into::New) pair_.reset();
  }

  Workshop& workshop_;
  Into into_;
  Answer answer_;
  std::unique_ptr<Pair> pair_;
  std::unique_ptr<PlainMaps> maps_;
  plain_composition plain_composition_{};
  std::shared_ptr<Composition> composition_;
  unsigned next_ = 0;
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

Work saving_into(Workshop& workshop, Into into) {
  auto save = std::make_shared<BulkSave>(workshop, into);
  return {[save](Digest* digest) { save->veldra(digest); },
          [save](Digest* digest) { save->plain(digest); }, [save] { save->prepare(); }};
}

Work save_new(Workshop& workshop) { return saving_into(workshop, Into::New); }

Work save_into_full(Workshop& workshop) { return saving_into(workshop, Into::Full); }

/// Compared with saving as many that are new.
Work save_taken(Workshop& workshop, Into into) {
  Work work = saving_into(workshop, into);
  const Work fresh = save_new(workshop);
  work.otherwise = {"saving them new", fresh.veldra, false};
  work.prepare = [taken = work.prepare, fresh] {
    taken();
    fresh.prepare();
  };
  return work;
}

Work save_using_existing(Workshop& workshop) { return save_taken(workshop, Into::UseExisting); }

Work save_overwriting(Workshop& workshop) { return save_taken(workshop, Into::Overwrite); }

unsigned every_material_of(const Workshop& workshop) { return workshop.materials(); }

unsigned single_items(const Workshop&) { return single_saves; }

}  // namespace

std::vector<TimedWork> saving_works() {
  return {
      {"save_new_materials",
       "new materials with all they refer to, in one transaction, per material", 1.05,
       every_material_of, save_new},
      {"save_into_full", "the same for a thousand into a full library", 0, BulkSave::added_to_full,
       save_into_full},
      {"save_using_existing",
       "materials whose names are taken, for which the stored ones stand",
       {1.3, Against::Otherwise},
       every_material_of,
       save_using_existing,
       2},
      {"save_overwriting",
       "materials whose names are taken, which are written over the stored ones",
       {1.3, Against::Otherwise},
       every_material_of,
       save_overwriting,
       2},
      {"save_one_material", "a new material in a transaction of its own", 0, single_items,
       work_of<SingleSaves>},
      {"update_one_material", "a changed material in a transaction of its own", 0, single_items,
       work_of<Updates>},
  };
}

}  // namespace veldra_bench
