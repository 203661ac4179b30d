// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/model_walk.hpp"

#include "store/model_kinds.hpp"
#include "support/description.hpp"
#include "support/names.hpp"

namespace veldra_tests {

namespace {

template <class T>
std::shared_ptr<T> created(Kind<T>, const ModelKey& key) {
  return T::create(text(key.name));
}

std::shared_ptr<CustomProperty> created(Kind<CustomProperty>, const ModelKey& key) {
  return CustomProperty::create(text(key.name), key.object_type);
}

}  // namespace

template <class T>
void RandomWalk::save(const std::shared_ptr<T>& object, const Expected& expected) {
  watch(object);
  const std::string before = state_of(object);
  const bool saved = run([&] { side_->library->save(object); }, expected);
  if (!saved) {
    EXPECT_EQ(state_of(object), before) << what_;
  }
}

ModelKey RandomWalk::named_key() {
  const ObjectType kind = random_.pick(std::vector<ObjectType>{
      ObjectType::Tag, ObjectType::MaterialType, ObjectType::Layer, ObjectType::CustomProperty});
  const ModelKey key{kind, "x" + std::to_string(random_.below(5))};
  if (kind != ObjectType::CustomProperty) return key;
  return {kind, "p" + std::to_string(random_.below(5)),
          random_.chance(50) ? ObjectType::Material : ObjectType::Composition};
}

void RandomWalk::save_named() {
  const ModelKey key = named_key();
  begin("save a new " + kind_name(key.kind) + " " + key.name);
  for_kind(key.kind, [&](auto kind) {
    const auto object = created(kind, key);
    watch(object);
    run([&] { side_->library->save(object); },
        [&](ModelOperation& operation) { operation.save_named(key); });
    EXPECT_EQ(object->library(), side_->library);
  });
}

template <class T>
void RandomWalk::rename(const ModelKey& key, const std::string& name) {
  const auto object = find<T>(*side_->library, key);
  object->name(text(name));
  save(object, [&](ModelOperation& operation) { operation.rename(key, name); });
}

void RandomWalk::rename_named() {
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

template <class AnyDraft>
void RandomWalk::save_draft(const AnyDraft& draft) {
  begin("save " + draft.stored_name.value_or("new") + " as " + draft.name);
  decide();
  const auto object = Maker(random_, *side_->library).make(draft);
  save(object, [&](ModelOperation& operation) { operation.save(draft); });
}

void RandomWalk::save_material() {
  Drafts drafts(random_, side_->model);
  const bool changes = !side_->model.materials.empty() && random_.chance(60);
  save_draft(changes ? drafts.changed_material() : drafts.new_material());
}

void RandomWalk::save_composition() {
  Drafts drafts(random_, side_->model);
  const bool changes = !side_->model.compositions.empty() && random_.chance(60);
  save_draft(changes ? drafts.changed_composition() : drafts.new_composition());
}

void RandomWalk::save_unchanged() {
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

void RandomWalk::save_removed() {
  if (side_->model.compositions.empty()) return;
  const ModelKey key{ObjectType::Composition, random_.pick(side_->model.compositions).first};
  begin("save removed composition " + key.name);
  const auto object = find<Composition>(*side_->library, key);
  side_->reactor.on_may_remove = nullptr;
  run([&] { side_->library->remove<Composition>(object->id()); },
      [&](ModelOperation& operation) { operation.remove(key); });
  object->description("changed");
  watch(object);
  const std::string before = state_of(object);
  run([&] { object->save(); },
      [](ModelOperation&) {
        throw ModelFailure{"veldra::ObjectNotFound", "Object not found"};
      });
  EXPECT_EQ(state_of(object), before) << what_;
}

}  // namespace veldra_tests
