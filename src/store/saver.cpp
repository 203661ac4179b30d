// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/saver.hpp"

#include "foundation/translated.hpp"
#include "objects/copies.hpp"
#include "store/copy_saving.hpp"
#include "store/host_saving.hpp"
#include "store/kinds.hpp"
#include "store/mapping-odb.hpp"
#include "store/unit_conversion.hpp"

#include <algorithm>

// The way of one object to its row, from top to bottom. `RowWriter` writes the row, `TakenValues`
// decides when it cannot be written, and the policies say what differs between saving for a host
// and within a copy.

namespace veldra {

template <class Policy>
Saver<Policy>::Saver(Library& library, IdMapping& mapping)
    : library_(library),
      impl_(LibraryAccess::impl(library)),
      mapping_(mapping),
      policy_(library),
      transaction_(*impl_.database),
      rows_(*impl_.database),
      taken_values_(library, transaction_) {}

template <class Policy>
void Saver<Policy>::commit() {
  policy_.commit(transaction_);
}

template <class Policy>
template <class T>
std::shared_ptr<T> Saver<Policy>::save(const std::shared_ptr<T>& object) {
  if (object == nullptr) return nullptr;
  impl_.database->stop_if_interrupted();
  const std::shared_ptr<Library> source = object->library();
  const IdMapping::Key key({ObjectTraits<T>::type, object->id()}, source.get());
  const bool foreign = source != nullptr && source.get() != &library_;
  IdMapping::Value known;
  if (foreign && mapping_.compute(key, known)) return policy_.standing_for(*object, known.id);

  const auto saved = foreign ? copy_of(object, *source) : object;
  auto status = IdMapping::Existing;
  if (saved->isDirty()) {
    policy_.remember(saved);
    save_references(*saved);
    status = write(*saved);
  }
  const ObjectKey stored(ObjectTraits<T>::type, saved->id());
  mapping_.assign(key, {stored.id, status});
  policy_.template note_stored<T>(stored.id);
  if (status != IdMapping::Existing) {
    impl_.reactor->objectSaved(library_, stored);
    transaction_.require_running();
    impl_.changed.insert(stored.type);
  }
  return saved;
}

/// A copy of an object of another library, with lengths in the unit of this one.
template <class Policy>
template <class T>
std::shared_ptr<T> Saver<Policy>::copy_of(const std::shared_ptr<T>& object, const Library& source) {
  const auto copy = clone_of(*policy_.original(object, source));
  convert_lengths(ObjectAccess::impl(*copy), source.unit(), library_.unit());
  return copy;
}

// What an object refers to is saved before it, member by member as its record describes them, and
// what stands for it in this library takes its place.

template <class Policy>
template <class Record>
class Saver<Policy>::ReferenceSaving {
 public:
  ReferenceSaving(Saver& saver, Record& record) : saver_(saver), record_(record) {}

  // Assets are not saved.
  template <class Role, class How, class Values, class Field>
  auto operator()(Member<Role, How, Values, Field>)
      -> IfOneOf<Role, Plain, Length, Number, UnsavedReference> {}

  template <class How, class Values, class T>
  void operator()(Member<Reference, How, Values, std::shared_ptr<T>> member) {
    put(record_.*member.field, saved(record_.*member.field));
  }

  template <class How, class Values>
  void operator()(
      Member<NeededReference, How, Values, std::shared_ptr<const MaterialType>> member) {
    auto type = record_.*member.field;
    if (type == nullptr) type = MaterialType::create(translated("Generic"));
    put(record_.*member.field, saved(type));
  }

  template <class How, class Values, class List>
  void operator()(Member<References, How, Values, List> member) {
    List list = record_.*member.field;
    for (auto& reference : list) reference = saved(reference);
    const List& former = record_.*member.field;
    const bool same = std::equal(list.begin(), list.end(), former.begin(), former.end());
    if (!same) saver_.policy_.set_list(record_.*member.field, std::move(list));
  }

  template <class How, class Values, class Map>
  void operator()(Member<ValuesByProperty, How, Values, Map> member) {
    // The reactor may change those of the object while the properties are saved.
    const Map former = record_.*member.field;
    std::vector<std::shared_ptr<const CustomProperty>> properties;
    properties.reserve(former.size());
    for (const auto& value : former)
      properties.push_back(saved(ObjectAccess::property(value.first)));
    auto property = properties.begin();
    const bool same = std::all_of(former.begin(), former.end(), [&property](const auto& value) {
      return *property++ == ObjectAccess::property(value.first);
    });
    if (same) return;

    // A property that a mapping names may have been renamed since, so the order is made anew.
    Map values;
    property = properties.begin();
    for (const auto& value : former) values.emplace(*property++, value.second);
    saver_.policy_.set_list(record_.*member.field, std::move(values));
  }

  template <class How, class Values, class Layers>
  void operator()(Member<LayersOfMaterials, How, Values, Layers> member) {
    Layers layers = record_.*member.field;
    bool same = true;
    for (auto& layer : layers) {
      const auto material = saved(layer.material());
      same = same && material == layer.material();
      layer.material(material);
    }
    if (!same) saver_.policy_.set_list(record_.*member.field, std::move(layers));
  }

 private:
  template <class T>
  std::shared_ptr<T> saved(const std::shared_ptr<T>& reference) {
    // Objects refer to const objects, since they must not change what others share with them.
    const auto object = std::const_pointer_cast<std::remove_const_t<T>>(reference);
    const auto standing = saver_.save(object);
    if (standing == nullptr && object != nullptr) throw ObjectNotFound();
    return standing;
  }

  template <class T>
  void put(std::shared_ptr<T>& field, std::shared_ptr<T> standing) {
    if (field != standing) saver_.policy_.set(field, std::move(standing));
  }

  Saver& saver_;
  Record& record_;
};

/// The id of an asset of another library means nothing in this file, so that it is dropped. Behind
/// all that is saved: until then the reactor sees the object with it.
template <class Policy, class Record>
class DroppingForeignAssets {
 public:
  DroppingForeignAssets(Policy& policy, const Library& library, Record& record)
      : policy_(policy), library_(library), record_(record) {}

  template <class Role, class How, class Values, class Field>
  auto operator()(Member<Role, How, Values, Field>)
      -> IfOneOf<Role, Plain, Length, Number, Reference, NeededReference, References,
                 ValuesByProperty, LayersOfMaterials> {}

  template <class How, class Values, class T>
  void operator()(Member<UnsavedReference, How, Values, std::shared_ptr<T>> member) {
    auto& asset = record_.*member.field;
    if (asset == nullptr) return;
    const auto source = asset->library();
    if (source != nullptr && source.get() != &library_) {
      policy_.set(asset, std::shared_ptr<T>());
    }
  }

 private:
  Policy& policy_;
  const Library& library_;
  Record& record_;
};

template <class Policy>
template <class T>
void Saver<Policy>::save_references(T& object) {
  auto& record = ObjectAccess::impl(object);
  using Record = std::remove_reference_t<decltype(record)>;
  const auto members = typename Record::Parts();
  for_each_member(members, ReferenceSaving<Record>(*this, record));
  for_each_member(members, DroppingForeignAssets<Policy, Record>(policy_, library_, record));
}

/// Writes the row, as often as it takes until no unique value is another object's.
template <class Policy>
template <class T>
IdMapping::Status Saver<Policy>::write(T& object) {
  auto status = IdMapping::Existing;
  for (bool settled = false; !settled;) {
    const RowWriter::Attempt attempt = rows_.write(object);
    status = attempt.status;
    settled = !attempt.taken || carry_out(taken_values_.judge(object, attempt.message), object);
  }
  ObjectRecord& record = ObjectAccess::impl(object);
  record.library = impl_.self;
  record.dirty = false;
  return status;
}

/// True when a stored object stands for this one now, and nothing is left to be written.
template <class Policy>
template <class T>
bool Saver<Policy>::carry_out(const Verdict& verdict, T& object) {
  auto& record = ObjectAccess::impl(object);
  switch (verdict.kind) {
    case Verdict::BecomeStored:
      policy_.become_stored(object, verdict.id);
      record.id = verdict.id;
      return true;
    case Verdict::IsStored:
      record.id = verdict.id;
      return true;
    case Verdict::Overwrite:
      record.id = verdict.id;
      return false;
    case Verdict::Rename:
      policy_.set(record.name, decltype(record.name)(verdict.name));
      return false;
    case Verdict::TryAgain:
      return false;
  }
  return false;
}

#define VELDRA_INSTANTIATE(T)                                                        \
  template std::shared_ptr<T> Saver<HostSaving>::save<T>(const std::shared_ptr<T>&); \
  template std::shared_ptr<T> Saver<CopySaving>::save<T>(const std::shared_ptr<T>&);

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

template class Saver<HostSaving>;
template class Saver<CopySaving>;

}  // namespace veldra
