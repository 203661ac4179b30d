// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_MATERIAL_HPP
#define VELDRA_MATERIAL_HPP

#include <veldra/asset.hpp>
#include <veldra/custom_property.hpp>
#include <veldra/layer.hpp>
#include <veldra/material_type.hpp>
#include <veldra/object.hpp>
#include <veldra/tag.hpp>

#include <set>

namespace veldra {

/// A building material: its texts, category, appearance, physical properties and the thicknesses
/// in which it is offered. Names of materials, and codes where there are any, are unique within a
/// library.
///
///     auto oak = veldra::Material::create("Oak");
///     oak->code("W-017");
///     oak->thicknesses(veldra::toModify) = {16.0, 22.0};
///     oak->custom_value("Fire class", "D-s2,d0");
///     oak->save(library);
///
/// Thicknesses are in the unit of the material's library. The scale, angle and alignment of
/// patterns are in units of the host's and are never converted.
///
/// Setters mark the material dirty when the value differs; references (`type`, `cut_layer` and the
/// assets) differ when they point to another object, whatever its contents. Getters and setters
/// throw nothing but `std::bad_alloc`, and the custom values what `CustomValued` says. They take
/// any number, but a material with NaN in a colour, a pattern or the alignment cannot be saved, and
/// a thickness of NaN is not stored.
class VELDRA_EXPORT Material : public Object<Material>,
                               public Saveable<Material>,
                               public Tagged<Material>,
                               public CustomValued<Material> {
 public:
  /// What a material does in a build-up. Stored in files, never renumber. Other values are the
  /// host's and are kept.
  enum class Function : int { None = 0, Structure = 1 };

  /// A new material of defaults: id 0, no library, and not dirty, so that saving it writes nothing
  /// until something is set.
  static std::shared_ptr<Material> create();

  /// A new material of that name: id 0, no library, dirty.
  static std::shared_ptr<Material> create(const String& name);

  /// A new material with the same values: id 0, no library, dirty. It shares the tags, type,
  /// layer, assets and custom properties that this one refers to.
  std::shared_ptr<Material> clone() const;

  ~Material();

  /// Takes over all values of `other` and marks this material dirty; its id and library stay.
  Material& operator=(const Material& other);

  /// Equality of the values; ids and libraries do not count. Of the code only its presence
  /// counts, not its text. Referenced objects are equal when they are the same object or equal in
  /// name (`type`, `cut_layer`), in value (the assets) or as tag lists and custom values are.
  bool operator==(const Material& other) const;
  bool operator!=(const Material& other) const;

  using Object<Material>::name;
  void name(const String& name);

  const String& description() const noexcept;
  void description(const String& description);

  const String& comments() const noexcept;
  void comments(const String& comments);

  /// Whether there is a code; it may be empty.
  bool has_code() const noexcept;

  /// The code; the empty text when there is none.
  const String& code() const noexcept;

  /// Sets the code; marks the material dirty when it had none or another.
  void code(const String& code);

  /// Removes the code; always marks the material dirty.
  void clear_code();

  const String& cost() const noexcept;
  void cost(const String& cost);

  const String& keynote() const noexcept;
  void keynote(const String& keynote);

  const String& label() const noexcept;
  void label(const String& label);

  const String& manufacturer() const noexcept;
  void manufacturer(const String& manufacturer);

  const String& mark() const noexcept;
  void mark(const String& mark);

  const String& model() const noexcept;
  void model(const String& model);

  const String& url() const noexcept;
  void url(const String& url);

  const String& classification() const noexcept;
  void classification(const String& classification);

  /// The reference to an appearance of the host's.
  const String& appearance() const noexcept;
  void appearance(const String& appearance);

  /// The category. A material without one gets the type "Generic" when it is saved.
  const std::shared_ptr<const MaterialType>& type() const noexcept;
  void type(const std::shared_ptr<const MaterialType>& type);

  /// Whether shaded views take the colour from the appearance; false by default.
  bool shading_use_appearance() const noexcept;
  void shading_use_appearance(bool use);

  const Color& shading_color() const noexcept;
  void shading_color(const Color& color);

  const Pattern& surface_pattern() const noexcept;
  void surface_pattern(const Pattern& pattern);

  const Color& surface_pattern_color() const noexcept;
  void surface_pattern_color(const Color& color);

  /// The origin of the surface pattern.
  const Point2d& surface_pattern_alignment() const noexcept;
  void surface_pattern_alignment(const Point2d& alignment);

  const Pattern& cut_pattern() const noexcept;
  void cut_pattern(const Pattern& pattern);

  const Color& cut_pattern_color() const noexcept;
  void cut_pattern_color(const Color& color);

  /// The drawing layer of the material in sections; empty for none.
  const std::shared_ptr<const Layer>& cut_layer() const noexcept;
  void cut_layer(const std::shared_ptr<const Layer>& layer);

  /// The physical properties; empty for none. Assets are not saved with the material, which keeps
  /// only the reference: the asset must be in the file. A reference to an asset of another library
  /// is dropped when the material is saved.
  const std::shared_ptr<StructuralAsset>& structuralAsset() const noexcept;
  void structuralAsset(const std::shared_ptr<StructuralAsset>& asset);

  const std::shared_ptr<ThermalAsset>& thermalAsset() const noexcept;
  void thermalAsset(const std::shared_ptr<ThermalAsset>& asset);

  Function function() const noexcept;
  void function(Function function);

  /// The thicknesses in which the material is offered.
  const std::set<double>& thicknesses() const noexcept;

  /// The thicknesses for changing; marks the material dirty on every call.
  std::set<double>& thicknesses(const ToModify&);

  /// Whether other thicknesses may be used as well; true by default.
  bool allow_custom_thickness() const noexcept;
  void allow_custom_thickness(bool allow);

 protected:
  struct Impl;

  Material();
  explicit Material(Impl* impl);

  Impl& impl() noexcept;
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

}  // namespace veldra

#endif
