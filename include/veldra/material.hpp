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
/// in which it is offered. Names of materials are unique within a library, and so are codes.
///
///     auto oak = veldra::Material::create("Oak");
///     oak->code("W-017");
///     oak->thicknesses(veldra::toModify) = {16.0, 22.0};
///     oak->custom_value("Fire class", "D-s2,d0");
///     oak->save(library);
///
/// Units:
/// - Thicknesses are in the unit of the material's library.
/// - Scale, angle and alignment of patterns are in units of the host and are never converted.
///
/// Dirty mark: a setter marks the material dirty when the new value differs from the old one. A
/// reference (`type`, `cut_layer`, an asset) differs when it points to another object, whatever
/// the contents of the two.
///
/// Getters return references that are valid until the material is changed, saved or destroyed.
///
/// Throws: getters and setters throw nothing but `std::bad_alloc`. They take any number. Saving is
/// stricter: a material with NaN in a colour, a pattern or the alignment cannot be saved, and a
/// thickness of NaN is not stored.
class VELDRA_EXPORT Material : public Object<Material>,
                               public Saveable<Material>,
                               public Tagged<Material>,
                               public CustomValued<Material> {
 public:
  /// The role of a material in a build-up. The numbers are stored in files and never change. Other
  /// numbers are the host's own: the library stores and returns them as they are.
  enum class Function : int {
    None = 0,      ///< no special role: a finish, an insulation, a membrane
    Structure = 1  ///< carries loads: brickwork, concrete, studs
  };

  /// @name Making and comparing
  /// @{

  /// Makes a new material of defaults: id 0, no library, an empty name. The material is clean, so
  /// that `save` writes nothing until something is set.
  ///
  /// Throws: `std::bad_alloc`.
  static std::shared_ptr<Material> create();

  /// Makes a new material of that name: id 0, no library, dirty.
  ///
  /// Throws: `std::bad_alloc`.
  static std::shared_ptr<Material> create(const String& name);

  /// Makes a new material with the same values: id 0, no library, dirty. The clone shares the
  /// tags, type, drawing layer, assets and custom properties to which this material refers.
  ///
  /// Throws: `std::bad_alloc`.
  std::shared_ptr<Material> clone() const;

  /// Destroys the handle. The material in the library stays.
  ~Material();

  /// Takes over all values of `other` and marks this material dirty. Id and library stay.
  ///
  /// Throws: `std::bad_alloc`; nothing has changed then.
  Material& operator=(const Material& other);

  /// Whether all values are equal. Ids, libraries and dirty marks do not count.
  ///
  /// - Of the code only its presence counts, not its text.
  /// - Types and drawing layers are equal when they are the same object or have equal names.
  /// - Assets are equal when they are the same object or have equal values.
  bool operator==(const Material& other) const;

  /// The opposite of `==`.
  bool operator!=(const Material& other) const;

  /// @}

  /// @name Texts and type
  /// Texts for people. The library stores them, compares them and copies them, and interprets none
  /// of them. All but the name are empty in a new material.
  /// @{

  using Object<Material>::name;

  /// Sets the name, by which users and `Library::get` find the material. It is unique among the
  /// materials of a library; `save` looks, this setter does not. Marks the material dirty if the
  /// name differs.
  void name(const String& name);

  /// One or two sentences that say to users what the material is.
  const String& description() const noexcept;

  /// Sets the description. Marks the material dirty if it differs.
  void description(const String& description);

  /// Notes for those who maintain the library: open questions, sources, history.
  const String& comments() const noexcept;

  /// Sets the comments. Marks the material dirty if they differ.
  void comments(const String& comments);

  /// Whether the material has a code. The code itself may be an empty text.
  bool has_code() const noexcept;

  /// The number of the material in the catalogue or accounts of an office, such as "W-017"; the
  /// empty text if there is none. Unlike the name it survives a renaming.
  const String& code() const noexcept;

  /// Sets the code, which is unique among the materials of a library that have one. Marks the
  /// material dirty if it had none or another one.
  ///
  /// No reactor is asked about a code that is taken: `save` throws `ObjectNotUnique` with the text
  /// "Material.code".
  void code(const String& code);

  /// Removes the code. Always marks the material dirty.
  void clear_code();

  /// A price as people write it, with currency and unit, such as "38 EUR/m2".
  const String& cost() const noexcept;

  /// Sets the price. Marks the material dirty if it differs.
  void cost(const String& cost);

  /// A key into the host's table of notes: a drawing shows the key beside the material, and the
  /// table explains it. Usually a number in a bill of works, such as "04.21".
  const String& keynote() const noexcept;

  /// Sets the keynote. Marks the material dirty if it differs.
  void keynote(const String& keynote);

  /// The short text that a host prints beside the material in a drawing, such as "LM 20 mm".
  const String& label() const noexcept;

  /// Sets the label. Marks the material dirty if it differs.
  void label(const String& label);

  /// The company that makes the product.
  const String& manufacturer() const noexcept;

  /// Sets the manufacturer. Marks the material dirty if it differs.
  void manufacturer(const String& manufacturer);

  /// The sign for the material in schedules and on plans, such as "M3". Unlike the code, two
  /// materials may have the same one.
  const String& mark() const noexcept;

  /// Sets the mark. Marks the material dirty if it differs.
  void mark(const String& mark);

  /// The manufacturer's name or number of the product.
  const String& model() const noexcept;

  /// Sets the model. Marks the material dirty if it differs.
  void model(const String& model);

  /// The address of a web page about the product.
  const String& url() const noexcept;

  /// Sets the address. Marks the material dirty if it differs.
  void url(const String& url);

  /// The place of the material in a classification that several offices share, such as the number
  /// of a group of building products.
  const String& classification() const noexcept;

  /// Sets the classification. Marks the material dirty if it differs.
  void classification(const String& classification);

  /// The name, path or number of an appearance in the host, with which its renderer
  /// draws the material.
  const String& appearance() const noexcept;

  /// Sets the reference to an appearance. Marks the material dirty if it differs.
  void appearance(const String& appearance);

  /// The category, such as "Wood"; empty for none.
  ///
  /// `save` gives a material without a type the type "Generic" (`Translations`).
  const std::shared_ptr<const MaterialType>& type() const noexcept;

  /// Sets the category; null removes it. Marks the material dirty if it is another object. `save`
  /// saves a new type with the material.
  void type(const std::shared_ptr<const MaterialType>& type);

  /// @}

  /// @name Appearance
  /// How a host draws the material in views, on surfaces and in sections. The library draws
  /// nothing; the program `veldra` draws sections by the cut pattern, the colour of shaded views
  /// and the colour of the cut pattern. A colour with `alpha` 0, which is the default, counts there
  /// as not set.
  /// @{

  /// Whether shaded views take their colour from the appearance, not from `shading_color`. False
  /// by default.
  bool shading_use_appearance() const noexcept;

  /// Sets the source of the colour. Marks the material dirty if it differs.
  void shading_use_appearance(bool use);

  /// The colour of the material in shaded views.
  const Color& shading_color() const noexcept;

  /// Sets the colour of shaded views. Marks the material dirty if it differs.
  void shading_color(const Color& color);

  /// The hatch of a surface that is seen, such as the courses of brickwork in an elevation.
  const Pattern& surface_pattern() const noexcept;

  /// Sets the hatch of surfaces. Marks the material dirty if it differs.
  void surface_pattern(const Pattern& pattern);

  /// The colour of the lines of the surface pattern.
  const Color& surface_pattern_color() const noexcept;

  /// Sets the colour of the surface pattern. Marks the material dirty if it differs.
  void surface_pattern_color(const Color& color);

  /// The origin of the surface pattern: a shift of the hatch within the surface, in the host's
  /// unit.
  const Point2d& surface_pattern_alignment() const noexcept;

  /// Sets the origin of the surface pattern. Marks the material dirty if it differs.
  void surface_pattern_alignment(const Point2d& alignment);

  /// The hatch of the material where it is cut, in plans and sections.
  const Pattern& cut_pattern() const noexcept;

  /// Sets the hatch of cuts. Marks the material dirty if it differs.
  void cut_pattern(const Pattern& pattern);

  /// The colour of the lines of the cut pattern.
  const Color& cut_pattern_color() const noexcept;

  /// Sets the colour of the cut pattern. Marks the material dirty if it differs.
  void cut_pattern_color(const Color& color);

  /// The drawing layer on which a host puts the material where it is cut; empty for none.
  const std::shared_ptr<const Layer>& cut_layer() const noexcept;

  /// Sets the drawing layer; null removes it. Marks the material dirty if it is another object.
  /// `save` saves a new layer with the material.
  void cut_layer(const std::shared_ptr<const Layer>& layer);

  /// @}

  /// @name Physical properties
  /// Assets are not saved with the material, which keeps only the reference. So:
  ///
  /// - The asset must be in the file already.
  /// - `save` drops the reference to an asset of another library.
  /// @{

  /// The properties for structural analysis; empty for none.
  const std::shared_ptr<StructuralAsset>& structuralAsset() const noexcept;

  /// Sets the reference; null removes it. Marks the material dirty if it is another object.
  void structuralAsset(const std::shared_ptr<StructuralAsset>& asset);

  /// The properties for energy analysis; empty for none.
  const std::shared_ptr<ThermalAsset>& thermalAsset() const noexcept;

  /// Sets the reference; null removes it. Marks the material dirty if it is another object.
  void thermalAsset(const std::shared_ptr<ThermalAsset>& asset);

  /// The role that the material usually has in a build-up; `Function::None` by default. A layer of
  /// a composition has a function of its own.
  Function function() const noexcept;

  /// Sets the role. Marks the material dirty if it differs.
  void function(Function function);

  /// @}

  /// @name Thicknesses
  /// @{

  /// The thicknesses in which the material is offered, in the unit of the library. Empty when
  /// nothing is known of them.
  const std::set<double>& thicknesses() const noexcept;

  /// The thicknesses, to be changed through the reference. Every call marks the material dirty,
  /// also when nothing is changed.
  ///
  ///     oak->thicknesses(veldra::toModify).insert(22.0);
  std::set<double>& thicknesses(const ToModify&);

  /// Whether a layer may have a thickness that is not offered; true by default. A hint for the
  /// host: the library stores any thickness.
  bool allow_custom_thickness() const noexcept;

  /// Sets the hint. Marks the material dirty if it differs.
  void allow_custom_thickness(bool allow);

  /// @}

 protected:
  /// The values of the material.
  struct Impl;

  /// A clean material of defaults, which the library fills with a row of the file.
  Material();

  /// A material that takes over `impl`.
  explicit Material(Impl* impl);

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
