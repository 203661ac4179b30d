// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_COPIES_HPP
#define VELDRA_OBJECTS_COPIES_HPP

#include "objects/changes.hpp"
#include "objects/references.hpp"
#include "objects/shared_name.hpp"

#include <memory>

// The three ways in which an object is copied.

namespace veldra {

/// A new object with the same values, which refers to the same objects: id 0, no library, dirty.
template <class T>
std::shared_ptr<T> clone_of(const T& object) {
  const auto clone = ObjectAccess::make<T>();
  assign_values(ObjectAccess::impl(*clone), ObjectAccess::impl(object));
  own(ObjectAccess::impl(*clone).name);
  return clone;
}

/// A second object for the same row, which refers to the same objects: with id and library, clean
/// or dirty as the first.
template <class T>
std::shared_ptr<T> shallow_copy(const T& object) {
  const auto copy = ObjectAccess::make<T>();
  ObjectAccess::impl(*copy) = ObjectAccess::impl(object);
  return copy;
}

/// The same with replicas of all that it refers to: as if the row had been read again.
template <class T>
std::shared_ptr<T> replica(const T& object);

/// The same for an asset of either kind; null for one of none.
std::shared_ptr<Asset> replica(const Asset& asset);

struct Replicate {
  template <class T>
  void operator()(std::shared_ptr<T>& reference) const {
    if (reference != nullptr) reference = replica(*reference);
  }
};

template <class T>
std::shared_ptr<T> replica(const T& object) {
  const auto copy = shallow_copy(object);
  for_each_reference(ObjectAccess::impl(*copy), Replicate());
  return copy;
}

}  // namespace veldra

#endif
