// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_MATERIAL_TYPE_HPP
#define VELDRA_MATERIAL_TYPE_HPP

#include <veldra/object.hpp>

namespace veldra {

/// A category of materials, such as "Concrete" or "Wood". Names of material types are unique
/// within a library.
class VELDRA_EXPORT MaterialType : public Object<MaterialType>, public Saveable<MaterialType> {
 public:
  /// A new material type: id 0, no library, dirty.
  static std::shared_ptr<MaterialType> create(const String& name);

  /// A new material type of the same name: id 0, no library, dirty.
  std::shared_ptr<MaterialType> clone() const;

  ~MaterialType();

  using Object<MaterialType>::name;

  /// Renames it; marks it dirty when the name differs.
  void name(const String& name);

  /// Equality of the names, exactly; ids and libraries do not count.
  bool operator==(const MaterialType& other) const noexcept;
  bool operator!=(const MaterialType& other) const noexcept;

 protected:
  struct Impl;

  MaterialType();
  explicit MaterialType(Impl* impl);

  Impl& impl() noexcept;
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

}  // namespace veldra

#endif
