// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_LAYER_HPP
#define VELDRA_LAYER_HPP

#include <veldra/object.hpp>

namespace veldra {

/// A drawing layer: a named sheet of a drawing, on which a host puts the cut of a material
/// (`Material::cut_layer`) or a whole build-up (`Composition::entity_layer`), to show or hide it.
/// Names of layers are unique within a library.
///
/// A drawing layer is not the layer of a build-up, which is a `Composition::Layer`.
class VELDRA_EXPORT Layer : public Object<Layer>, public Saveable<Layer> {
 public:
  /// Makes a new layer: id 0, no library, dirty. A layer of that name in the library takes its
  /// place when it is saved.
  ///
  /// Throws: `std::bad_alloc`.
  static std::shared_ptr<Layer> create(const String& name);

  /// Makes a new layer of the same name: id 0, no library, dirty.
  ///
  /// Throws: `std::bad_alloc`.
  std::shared_ptr<Layer> clone() const;

  /// Destroys the handle. The layer in the library stays.
  ~Layer();

  using Object<Layer>::name;

  /// Renames the layer; all that refers to it shows the new name once it is saved. Marks it dirty
  /// if the name differs. `save` throws `ObjectNotUnique` when the name is taken.
  ///
  /// Throws: `std::bad_alloc`.
  void name(const String& name);

  /// Whether the names are equal, code unit by code unit. Ids and libraries do not count.
  bool operator==(const Layer& other) const noexcept;

  /// The opposite of `==`.
  bool operator!=(const Layer& other) const noexcept;

 protected:
  /// The values of the layer.
  struct Impl;

  /// A clean layer of defaults, which the library fills with a row of the file.
  Layer();

  /// A layer that takes over `impl`.
  explicit Layer(Impl* impl);

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
