// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_OBJECTS_STORED_OBJECTS_HPP
#define VELDRA_TESTS_OBJECTS_STORED_OBJECTS_HPP

#include "support/temporary.hpp"

#include <veldra/veldra.hpp>

#include <memory>
#include <string>

namespace veldra_tests {

/// A library with one object of each kind named "Stored", which plain SQL put there. In none of
/// their fields is the value of a new object. What is read from it is clean, and two reads give
/// two objects.
///
/// The material has a structural and a thermal asset. Two more assets have the same numbers under
/// other names, and two have no numbers; the materials `twin_id` and `third_id` refer to them.
class StoredObjects {
 public:
  static constexpr unsigned id = 101;
  static constexpr unsigned twin_id = 102;
  static constexpr unsigned third_id = 103;

  StoredObjects();

  template <class T>
  std::shared_ptr<T> get() const {
    return library_->get<T>(id);
  }

  /// An asset of which the file holds no number, so that all are NaN.
  template <class T>
  std::shared_ptr<T> get_without_numbers() const;

  const std::shared_ptr<veldra::Library>& library() const { return library_; }

  /// Closes the library; the file stays.
  void close() { library_.reset(); }

 private:
  TemporaryFolder folder_;
  std::shared_ptr<veldra::Library> library_;
};

template <>
std::shared_ptr<veldra::StructuralAsset> StoredObjects::get<veldra::StructuralAsset>() const;

template <>
std::shared_ptr<veldra::ThermalAsset> StoredObjects::get<veldra::ThermalAsset>() const;

template <>
std::shared_ptr<veldra::StructuralAsset>
StoredObjects::get_without_numbers<veldra::StructuralAsset>() const;

template <>
std::shared_ptr<veldra::ThermalAsset> StoredObjects::get_without_numbers<veldra::ThermalAsset>()
    const;

/// An object as the constructor for derived classes leaves it: clean, without a name or an id. No
/// shared pointer holds it.
template <class T>
class Bare : public T {
 public:
  Bare() {}
};

}  // namespace veldra_tests

#endif
