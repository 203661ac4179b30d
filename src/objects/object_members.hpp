// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_OBJECT_MEMBERS_HPP
#define VELDRA_OBJECTS_OBJECT_MEMBERS_HPP

#include "objects/changes.hpp"
#include "objects/equality.hpp"
#include "objects/object_access.hpp"

#include <veldra/exceptions.hpp>

#include <algorithm>

// The members of the class templates that objects are made of. Each class's source includes this
// and instantiates what its class derives from.

namespace veldra {

// Each class's members need its record and are made in its source only.
extern template class Object<Tag>;
extern template class Object<Layer>;
extern template class Object<MaterialType>;
extern template class Object<CustomProperty>;
extern template class Object<Asset>;
extern template class Object<Material>;
extern template class Object<Composition>;

/// The record of the class that `base` is a part of.
template <class T, template <class> class Base>
auto& record_of(Base<T>& base) {
  return ObjectAccess::impl(static_cast<T&>(base));
}

template <class T, template <class> class Base>
const auto& record_of(const Base<T>& base) {
  return ObjectAccess::impl(static_cast<const T&>(base));
}

template <class T>
unsigned Object<T>::id() const noexcept {
  return record_of(*this).id;
}

template <class T>
const String& Object<T>::name() const noexcept {
  return record_of(*this).name;
}

template <class T>
std::shared_ptr<Library> Object<T>::library() const {
  return record_of(*this).library.lock();
}

template <class T>
bool Object<T>::isDirty() const noexcept {
  return record_of(*this).dirty;
}

template <class T>
const std::vector<std::shared_ptr<Tag>>& Tagged<T>::tags() const noexcept {
  return record_of(*this).tags;
}

template <class T>
std::vector<std::shared_ptr<Tag>>& Tagged<T>::tags(const ToModify&) {
  record_of(*this).dirty = true;
  return record_of(*this).tags;
}

template <class T>
void Tagged<T>::addTag(const std::shared_ptr<Tag>& tag) {
  tags(toModify).push_back(tag);
}

template <class T>
void Tagged<T>::addTag(const unsigned short* name) {
  tags(toModify).push_back(Tag::create(name));
}

template <class Matches>
void remove_tags(std::vector<std::shared_ptr<Tag>>& tags, Matches matches) {
  const auto gone = [&matches](const std::shared_ptr<Tag>& tag) {
    return tag != nullptr && matches(*tag);
  };
  tags.erase(std::remove_if(tags.begin(), tags.end(), gone), tags.end());
}

template <class T>
void Tagged<T>::removeTag(const std::shared_ptr<Tag>& tag) {
  // The argument may be an entry of the list. Deliberate: an unsaved tag has id 0, so removing one
  // removes all that are unsaved.
  auto& list = tags(toModify);
  if (tag == nullptr) return;
  const unsigned id = tag->id();
  remove_tags(list, [id](const Tag& entry) { return entry.id() == id; });
}

template <class T>
void Tagged<T>::removeTag(const unsigned short* name) {
  // The argument may be the name of an entry.
  const String copy(name);
  remove_tags(tags(toModify), [&copy](const Tag& entry) { return entry.name() == copy; });
}

template <class T>
const typename CustomValued<T>::Values& CustomValued<T>::custom_values() const noexcept {
  return record_of(*this).custom_values;
}

template <class T>
typename CustomValued<T>::Values::iterator CustomValued<T>::custom_values_begin(const ToModify&) {
  record_of(*this).dirty = true;
  return record_of(*this).custom_values.begin();
}

template <class T>
typename CustomValued<T>::Values::iterator CustomValued<T>::custom_values_end(const ToModify&) {
  record_of(*this).dirty = true;
  return record_of(*this).custom_values.end();
}

/// The entry of a property: found by name, taken only if its key is equal.
template <class Values>
auto find_value(Values& values, const std::shared_ptr<const CustomProperty>& property) {
  if (property == nullptr) return values.end();
  const CustomPropertyKey key(property);
  auto entry = values.find(key);
  return entry != values.end() && entry->first == key ? entry : values.end();
}

/// The first entry whose property has that name.
template <class Values>
auto find_value(Values& values, const String& name) {
  return std::find_if(values.begin(), values.end(),
                      [&name](const auto& entry) { return entry.first->name() == name; });
}

template <class Values, class Key>
odb::nullable<String> value_of(const Values& values, const Key& key) {
  const auto entry = find_value(values, key);
  return entry == values.end() ? odb::nullable<String>() : odb::nullable<String>(entry->second);
}

template <class Record, class Key>
void clear_value(Record& record, const Key& key) {
  const auto entry = find_value(record.custom_values, key);
  if (entry == record.custom_values.end()) return;
  record.dirty = true;
  record.custom_values.erase(entry);
}

template <class T>
odb::nullable<String> CustomValued<T>::custom_value(
    const std::shared_ptr<const CustomProperty>& property) const {
  return value_of(custom_values(), property);
}

template <class T>
odb::nullable<String> CustomValued<T>::custom_value(const String& name) const {
  return value_of(custom_values(), name);
}

template <class T>
void CustomValued<T>::custom_value(const std::shared_ptr<const CustomProperty>& property,
                                   const String& value) {
  if (property == nullptr) throw InappropriateCustomProperty();
  const ObjectType type = property->object_type();
  if (type != ObjectTraits<T>::type && type != ObjectType{}) throw InappropriateCustomProperty();

  auto& record = record_of(*this);
  String copy(value);
  record.custom_values[property] = std::move(copy);
  record.dirty = true;
}

template <class T>
void CustomValued<T>::custom_value(const String& name, const String& value) {
  custom_value(CustomProperty::create(name, ObjectTraits<T>::type), value);
}

template <class T>
void CustomValued<T>::clear_custom_value(const std::shared_ptr<const CustomProperty>& property) {
  clear_value(record_of(*this), property);
}

template <class T>
void CustomValued<T>::clear_custom_value(const String& name) {
  clear_value(record_of(*this), name);
}

template <class T>
void CustomValued<T>::clear_custom_values() {
  auto& record = record_of(*this);
  if (record.custom_values.empty()) return;
  record.dirty = true;
  record.custom_values.clear();
}

}  // namespace veldra

#endif
