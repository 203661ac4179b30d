// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/id_mapping.hpp>

#include <functional>

namespace veldra {

IdMapping::Key::Key(const ObjectKey& key_, const Library* source_) : key(key_), source(source_) {}

bool IdMapping::Key::operator==(const Key& other) const {
  return key == other.key && source == other.source;
}

bool IdMapping::Key::operator!=(const Key& other) const { return !(*this == other); }

bool IdMapping::Key::operator<(const Key& other) const {
  if (source != other.source) return std::less<const Library*>()(source, other.source);
  return key < other.key;
}

IdMapping::Value::Value() : Value(0, Inserted) {}
IdMapping::Value::Value(unsigned id_, Status status_) : id(id_), status(status_) {}

IdMapping::IdMapping(const Library* destination) : destination_(destination) {}

const Library* IdMapping::destination() const noexcept { return destination_; }

void IdMapping::assign(const Key& key, const Value& value) { entries_[key] = value; }

bool IdMapping::has(const Key& key) const { return entries_.count(key) != 0; }

bool IdMapping::compute(const Key& key, Value& value) const {
  const auto entry = entries_.find(key);
  if (entry == entries_.end()) return false;
  value = entry->second;
  return true;
}

bool IdMapping::remove(const Key& key) { return entries_.erase(key) != 0; }

IdMapping::const_iterator IdMapping::begin() const noexcept { return entries_.begin(); }
IdMapping::const_iterator IdMapping::end() const noexcept { return entries_.end(); }
std::size_t IdMapping::size() const noexcept { return entries_.size(); }

}  // namespace veldra
