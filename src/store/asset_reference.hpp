// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_ASSET_REFERENCE_HPP
#define VELDRA_STORE_ASSET_REFERENCE_HPP

#include <veldra/asset.hpp>

#include <odb/forward.hxx>
#include <odb/pointer-traits.hxx>
#include <odb/traits.hxx>

#include <memory>

namespace veldra {

/// How the mapping reads a reference to an asset of one kind: by a pointer that loads what it
/// refers to itself. What the mapping does for a plain pointer makes the object that the row names
/// and takes it for the kind that is wanted; a file in which the two differ would end the process.
///
/// Other ways were tried. Without any, such a file ends the process or reads as if there were no
/// material. A pointer to the common base of both kinds cannot be changed to one of a kind by the
/// mapping, and changes the foreign key. What the runtime calls before and after loading knows the
/// base only, or comes too late.
template <class T>
class AssetReference {
 public:
  AssetReference() = default;
  AssetReference(const std::shared_ptr<T>& asset) : asset_(asset) {}

  /// Loads the asset within the current transaction. Throws `odb::object_not_persistent` when there
  /// is none, and `odb::no_type_info` when it is of another kind.
  AssetReference(odb::database& database, unsigned long long id);

  const std::shared_ptr<T>& get() const noexcept { return asset_; }

 private:
  std::shared_ptr<T> asset_;
};

}  // namespace veldra

namespace odb {

/// The mapping hands a pointer that counts as lazy the database and the id, and loads nothing.
template <class T>
class pointer_traits<veldra::AssetReference<T>> {
 public:
  static const pointer_kind kind = pk_shared;
  static const bool lazy = true;

  using element_type = T;
  using pointer_type = veldra::AssetReference<T>;
  using eager_pointer_type = std::shared_ptr<T>;

  static bool null_ptr(const pointer_type& pointer) { return pointer.get() == nullptr; }

  template <class Object = T>
  static typename object_traits<Object>::id_type object_id(const pointer_type& pointer) {
    return pointer.get()->id();
  }
};

}  // namespace odb

#endif
