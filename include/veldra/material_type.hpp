// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_MATERIAL_TYPE_HPP
#define VELDRA_MATERIAL_TYPE_HPP

#include <veldra/object.hpp>

namespace veldra {

/// A category of materials, such as "Concrete" or "Wood". Names of material types are unique
/// within a library.
///
/// A new library has thirteen of them: Ceramic, Concrete, Earth, Generic, Glass, Liquid, Masonry,
/// Metal, Paint, Plastic, Stone, Textile, Wood, or what the host translates them to
/// (`Translations`). A host may rename them, remove those that are not in use, and add others.
class VELDRA_EXPORT MaterialType : public Object<MaterialType>, public Saveable<MaterialType> {
 public:
  /// Makes a new material type: id 0, no library, dirty. A material type of that name in the
  /// library takes its place when it is saved.
  ///
  /// Throws: `std::bad_alloc`.
  static std::shared_ptr<MaterialType> create(const String& name);

  /// Makes a new material type of the same name: id 0, no library, dirty.
  ///
  /// Throws: `std::bad_alloc`.
  std::shared_ptr<MaterialType> clone() const;

  /// Destroys the handle. The material type in the library stays.
  ~MaterialType();

  using Object<MaterialType>::name;

  /// Renames the material type; all that refers to it shows the new name once it is saved. Marks it
  /// dirty if the name differs. `save` throws `ObjectNotUnique` when the name is taken.
  ///
  /// Throws: `std::bad_alloc`.
  void name(const String& name);

  /// Whether the names are equal, code unit by code unit. Ids and libraries do not count.
  bool operator==(const MaterialType& other) const noexcept;

  /// The opposite of `==`.
  bool operator!=(const MaterialType& other) const noexcept;

 protected:
  /// The values of the material type.
  struct Impl;

  /// A clean material type of defaults, which the library fills with a row of the file.
  MaterialType();

  /// A material type that takes over `impl`.
  explicit MaterialType(Impl* impl);

  /// The values, for the library to write.
  Impl& impl() noexcept;

  /// The values, for the library to read.
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

}  // namespace veldra

#endif
