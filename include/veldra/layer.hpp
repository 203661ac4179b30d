// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_LAYER_HPP
#define VELDRA_LAYER_HPP

#include <veldra/object.hpp>

namespace veldra {

/// A drawing layer: where a host draws the section of a material or a composition. Names of layers
/// are unique within a library. (A layer of a build-up is a `Composition::Layer`.)
class VELDRA_EXPORT Layer : public Object<Layer>, public Saveable<Layer> {
 public:
  /// A new layer: id 0, no library, dirty.
  static std::shared_ptr<Layer> create(const String& name);

  /// A new layer of the same name: id 0, no library, dirty.
  std::shared_ptr<Layer> clone() const;

  ~Layer();

  using Object<Layer>::name;

  /// Renames it; marks it dirty when the name differs.
  void name(const String& name);

  /// Equality of the names, exactly; ids and libraries do not count.
  bool operator==(const Layer& other) const noexcept;
  bool operator!=(const Layer& other) const noexcept;

 protected:
  struct Impl;

  Layer();
  explicit Layer(Impl* impl);

  Impl& impl() noexcept;
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

}  // namespace veldra

#endif
