// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_COMPOSITION_HPP
#define VELDRA_COMPOSITION_HPP

#include <veldra/material.hpp>

#include <cstdint>

namespace veldra {

/// A build-up of layers: a wall, a floor or a roof. Names of compositions are unique within a
/// library.
///
/// Layers are counted from 0, from the outside to the inside. Four indices say which of them have a
/// role:
///
///          outside                                   inside
///       +---------+------------+-----------------+---------+
///       |    0    |     1      |        2        |    3    |
///       | render  | insulation |    brickwork    | plaster |
///       +---------+------------+-----------------+---------+
///                 |<------ the core ------------>|
///                 first_core_layer = 1   last_core_layer = 2
///                                structural_layer = 2
///                 variable_layer = 1, from 80 to 240 thick
///
/// - The core, from `first_core_layer` to `last_core_layer`, is the part that remains when the
///   finishes are taken away.
/// - The structural layer carries the loads. It lies in the core. Where the core moves away from
///   it, a core layer with `Material::Function::Structure` takes its role.
/// - The variable layer, if any, may differ in thickness from place to place, such as insulation
///   to falls. Nothing ties it to the core or to the number of layers.
///
/// The setters keep `first_core_layer <= structural_layer <= last_core_layer <= layers - 1`. They
/// move the other indices for that, silently. The functions below name the cases in which the order
/// cannot be kept. Indices are unsigned 32-bit numbers: 0 less 1 is 4294967295.
///
///     auto wall = veldra::Composition::create("Cavity wall");
///     wall->appendLayer({render, veldra::Material::Function::None, 15.0});
///     wall->appendLayer({brick, veldra::Material::Function::Structure, 175.0});
///     wall->last_core_layer(1);
///     wall->first_core_layer(1);  // after the last one, which it could raise
///     wall->save(library);        // saves the materials as well
///
/// Units: thicknesses are in the unit of the composition's library.
///
/// Dirty mark: a setter marks the composition dirty if the new value differs from the old one,
/// unless it says that it always does.
///
/// Getters return references that are valid until the composition is changed, saved or destroyed.
///
/// Throws: nothing but `std::bad_alloc`, unless a function says more.
class VELDRA_EXPORT Composition : public Object<Composition>,
                                  public Saveable<Composition>,
                                  public Tagged<Composition>,
                                  public CustomValued<Composition> {
 public:
  /// The kind of building part. The numbers are stored in files and never change. Each is one bit,
  /// so that `CompositionCriteria` can join them.
  enum class Type : unsigned {
    Wall = 1,    ///< a wall; `veldra` takes the heat to flow through it horizontally
    Floor = 2,   ///< a floor; `veldra` takes the heat to flow downward
    Roof = 4,    ///< a roof; `veldra` takes the heat to flow upward
    Other = 128  ///< all else
  };

  /// One layer of a build-up: a plain value that copies freely. It is not a drawing layer, which is
  /// a `veldra::Layer`.
  class VELDRA_EXPORT Layer {
   public:
    /// Makes a layer without material and function, with a thickness of 1.
    Layer();

    /// Makes a layer. `thickness` is in the unit of the library. No value is checked.
    Layer(const std::shared_ptr<const Material>& material, Material::Function function,
          double thickness);

    /// The material; must not be null when the composition is saved.
    const std::shared_ptr<const Material>& material() const noexcept { return material_; }

    /// Sets the material. Marks nothing dirty: `Composition::layer(index, toModify)` has done so.
    void material(const std::shared_ptr<const Material>& material) { material_ = material; }

    /// The role of the layer. One with `Structure` may become the structural layer.
    Material::Function function() const noexcept { return function_; }

    /// Sets the role. Marks nothing dirty, and moves no index of the composition.
    void function(Material::Function function) noexcept { function_ = function; }

    /// The thickness in the unit of the library.
    double thickness() const noexcept { return thickness_; }

    /// Sets the thickness in the unit of the library. Takes any number. Marks nothing dirty.
    void thickness(double thickness) noexcept { thickness_ = thickness; }

    /// Whether materials are the same or equal, functions equal, and thicknesses equal without
    /// tolerance.
    bool operator==(const Layer& other) const;

    /// The opposite of `==`.
    bool operator!=(const Layer& other) const;

   private:
    friend class odb::access;

    std::shared_ptr<const Material> material_;
    Material::Function function_ = Material::Function::None;
    double thickness_ = 1.0;
  };

  /// The container of the layers.
  using Layers = std::vector<Layer>;

  /// @name Making and comparing
  /// @{

  /// Makes a new composition without name and layers: id 0, no library. It is clean, so that `save`
  /// writes nothing until something is set.
  static std::shared_ptr<Composition> create();

  /// Makes a new composition of that name without layers: id 0, no library, dirty.
  static std::shared_ptr<Composition> create(const String& name);

  /// Makes a new composition with the same values: id 0, no library, dirty. The clone shares the
  /// materials, tags, drawing layer and custom properties to which this composition refers.
  std::shared_ptr<Composition> clone() const;

  /// Destroys the handle. The composition in the library stays.
  ~Composition();

  /// Takes over all values of `other` and marks this composition dirty. Id and library stay.
  ///
  /// Throws: `std::bad_alloc`; nothing has changed then.
  Composition& operator=(const Composition& other);

  /// Whether all values are equal. Ids, libraries and dirty marks do not count. Of the variable
  /// layer and of its greatest thickness only the presence counts.
  bool operator==(const Composition& other) const;

  /// The opposite of `==`.
  bool operator!=(const Composition& other) const;

  /// @}

  /// @name Texts and type
  /// @{

  using Object<Composition>::name;

  /// Sets the name, by which users and `Library::get` find the composition. It is unique among the
  /// compositions of a library; `save` looks, this setter does not. Marks the composition dirty if
  /// the name differs.
  void name(const String& name);

  /// One or two sentences that say to users what the build-up is for.
  const String& description() const noexcept;

  /// Sets the description. Marks the composition dirty if it differs.
  void description(const String& description);

  /// Notes for those who maintain the library.
  const String& comments() const noexcept;

  /// Sets the comments. Marks the composition dirty if they differ.
  void comments(const String& comments);

  /// The kind of building part; `Type::Other` by default.
  Type type() const noexcept;

  /// Sets the kind of building part. Of joined values one is stored: `Wall` if its bit is set, else
  /// `Roof`, else `Floor`, else `Other`. Marks the composition dirty if that one differs.
  void type(Type type);

  /// The drawing layer on which a host draws the building part as a whole; empty for none.
  const std::shared_ptr<const veldra::Layer>& entity_layer() const noexcept;

  /// Sets the drawing layer; null removes it. Marks the composition dirty if it is another object,
  /// whatever its name. `save` saves a new layer with the composition.
  void entity_layer(const std::shared_ptr<const veldra::Layer>& layer);

  /// @}

  /// @name Layers
  /// The layers from the outside to the inside, and functions that change their order and move the
  /// indices below with them.
  /// @{

  /// The layers from the outside to the inside.
  const Layers& layers() const noexcept;

  /// The layer at `index`, for reading.
  ///
  /// Throws `std::out_of_range`: `index >= layers().size()`.
  const Layer& layer(std::uint64_t index) const;

  /// The layer at `index`, to be changed through the reference. Marks the composition dirty.
  ///
  /// Throws, and changes nothing, `std::out_of_range`: `index >= layers().size()`.
  Layer& layer(std::uint64_t index, const ToModify&);

  /// The first layer, to be changed through the iterator. Every call marks the composition dirty.
  Layers::iterator layers_begin(const ToModify&);

  /// The end of the layers, to go with `layers_begin`. Every call marks the composition dirty.
  Layers::iterator layers_end(const ToModify&);

  /// Adds a layer at the inside. No index moves. Marks the composition dirty.
  void appendLayer(const Layer& layer);

  /// Inserts a layer before the one at `index`, and moves the indices that are at or behind it.
  /// Marks the composition dirty.
  ///
  /// - An insertion at or before a core of one layer makes the core two layers deep.
  /// - An insertion at or before a core whose first layer is the structural one can make another
  ///   layer structural. Set the structural layer again.
  ///
  /// Throws `std::out_of_range`:
  /// - `index > layers().size()`; nothing has changed then.
  /// - as `structural_layer(index)`; the layer has been inserted then.
  void insertLayer(std::uint64_t index, const Layer& layer);

  /// Moves the layer at `from` so that it stands at `to`, or at the end if `to` is beyond it, and
  /// moves the indices with the layers. The index of a variable layer that is moved becomes `to`
  /// itself, also beyond the end. Marks the composition dirty.
  ///
  /// Throws `std::out_of_range`:
  /// - `from >= layers().size()`; nothing but the dirty mark has changed then.
  /// - as `structural_layer(index)`; the layer has been moved then.
  void moveLayer(std::uint64_t from, std::uint64_t to);

  /// Removes the layer at `index`, and moves the indices behind it. Marks the composition dirty.
  ///
  /// - A variable layer that is removed is cleared.
  /// - Removal of the first core layer leaves `first_core_layer` as it is.
  /// - Removal of the last core layer, or of the structural layer, lowers that index by one, from 0
  ///   to 4294967295, by the rules of the setters below.
  /// - Removal of a layer before a structural layer that is the last one of the core can make
  ///   another layer structural. Set the structural layer again.
  ///
  /// Throws `std::out_of_range`:
  /// - `index >= layers().size()`; nothing has changed then.
  /// - as `structural_layer(index)`; the layer has been removed then.
  void removeLayer(std::uint64_t index);

  /// @}

  /// @name Core and structure
  /// @{

  /// The outermost layer of the core; 0 by default.
  unsigned first_core_layer() const noexcept;

  /// Sets the outermost layer of the core. Marks the composition dirty if an index differs.
  ///
  /// - A last core layer before `index` moves to `index`. Both are limited to the last layer then.
  /// - A structural layer that is no longer in the core moves into it.
  ///
  /// Throws: as `structural_layer(index)`.
  void first_core_layer(unsigned index);

  /// The innermost layer of the core; 0 by default.
  unsigned last_core_layer() const noexcept;

  /// Sets the innermost layer of the core, at most to the last layer. Marks the composition dirty
  /// if an index differs. Without layers any value is stored.
  ///
  /// - A first core layer behind the new value moves to it.
  /// - A structural layer that is no longer in the core moves into it.
  ///
  /// Throws: as `structural_layer(index)`.
  void last_core_layer(unsigned index);

  /// The layer that carries the loads; 0 by default.
  unsigned structural_layer() const noexcept;

  /// Sets the layer that carries the loads. Marks the composition dirty if the stored value
  /// differs. Stored is:
  ///
  /// - for an index within the core, the index, whatever the function of that layer;
  /// - for one before the core, the first core layer with `Structure`, else the first core layer;
  /// - for one behind the core, the last core layer with `Structure`, else the last core layer.
  ///
  /// Throws `std::out_of_range`: the search for a layer with `Structure` has met an index of the
  /// core that is beyond the layers. Values that were stored before stay.
  void structural_layer(unsigned index);

  /// @}

  /// @name Variable layer
  /// @{

  /// Whether one layer may differ in thickness from place to place.
  bool has_variable_layer() const noexcept;

  /// The layer that may differ in thickness; 0 if there is none.
  unsigned variable_layer() const noexcept;

  /// Sets the layer that may differ in thickness. The index is not checked. Marks the composition
  /// dirty if there was none or another one.
  void variable_layer(unsigned index);

  /// Says that no layer differs in thickness. Always marks the composition dirty.
  void clear_variable_layer();

  /// The least thickness of the variable layer, in the unit of the library; 0 by default.
  double variable_layer_min_thickness() const noexcept;

  /// Sets the least thickness of the variable layer. Takes any number. Marks the composition dirty
  /// if it differs.
  void variable_layer_min_thickness(double thickness);

  /// Whether the thickness of the variable layer has an upper limit.
  bool has_variable_layer_max_thickness() const noexcept;

  /// The greatest thickness of the variable layer, in the unit of the library; 0 if there is no
  /// limit.
  double variable_layer_max_thickness() const noexcept;

  /// Sets the greatest thickness of the variable layer. Takes any number; NaN is saved as no limit.
  /// Marks the composition dirty if there was no limit or another one.
  void variable_layer_max_thickness(double thickness);

  /// Removes the upper limit. Always marks the composition dirty.
  void clear_variable_layer_max_thickness();

  /// @}

 protected:
  /// The values of the composition.
  struct Impl;

  /// A clean composition of defaults, which the library fills with a row of the file.
  Composition();

  /// A composition that takes over `impl`.
  explicit Composition(Impl* impl);

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
