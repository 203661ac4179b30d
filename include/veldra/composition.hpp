// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_COMPOSITION_HPP
#define VELDRA_COMPOSITION_HPP

#include <veldra/material.hpp>

#include <cstdint>

namespace veldra {

/// A build-up of layers: a wall, a floor or a roof. Names of compositions are unique within a
/// library.
///
/// Layers are counted from 0. Four indices tell what they are for:
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
/// - The core, from `first_core_layer` to `last_core_layer`, is what stands when finishes are
///   taken away.
/// - The structural layer carries the loads. It lies in the core; where the core moves away from
///   it, a core layer with `Material::Function::Structure` takes over.
/// - The variable layer, if any, may differ in thickness from place to place. Nothing ties it to
///   the core or even to the number of layers.
///
/// The setters keep `first_core_layer <= structural_layer <= last_core_layer <= layers - 1` by
/// moving the other indices, silently; the cases in which that cannot be had are told at the
/// operations. Indices count in unsigned 32-bit numbers: one below 0 is 4294967295.
///
///     auto wall = veldra::Composition::create("Cavity wall");
///     wall->appendLayer({render, veldra::Material::Function::None, 15.0});
///     wall->appendLayer({brick, veldra::Material::Function::Structure, 175.0});
///     wall->last_core_layer(1);
///     wall->first_core_layer(1);
///     wall->save(library);   // saves the materials as well
///
/// Thicknesses are in the unit of the composition's library. Setters mark the composition dirty
/// when the value differs, unless they say that they always do.
class VELDRA_EXPORT Composition : public Object<Composition>,
                                  public Saveable<Composition>,
                                  public Tagged<Composition>,
                                  public CustomValued<Composition> {
 public:
  /// Stored in files, never renumber. Each value is one bit, so that criteria can join them.
  enum class Type : unsigned { Wall = 1, Floor = 2, Roof = 4, Other = 128 };

  /// One layer of a build-up: a plain value that copies freely. (A drawing layer is a
  /// `veldra::Layer`.)
  class VELDRA_EXPORT Layer {
   public:
    /// No material, no function, a thickness of 1.
    Layer();
    Layer(const std::shared_ptr<const Material>& material, Material::Function function,
          double thickness);

    /// The material; must not be null when the composition is saved.
    const std::shared_ptr<const Material>& material() const noexcept { return material_; }
    void material(const std::shared_ptr<const Material>& material) { material_ = material; }

    /// What the layer does; a layer with `Structure` may become the structural layer.
    Material::Function function() const noexcept { return function_; }
    void function(Material::Function function) noexcept { function_ = function; }

    /// In the unit of the library.
    double thickness() const noexcept { return thickness_; }
    void thickness(double thickness) noexcept { thickness_ = thickness; }

    /// The same or equal materials, equal functions, exactly equal thicknesses.
    bool operator==(const Layer& other) const;
    bool operator!=(const Layer& other) const;

   private:
    friend class odb::access;

    std::shared_ptr<const Material> material_;
    Material::Function function_ = Material::Function::None;
    double thickness_ = 1.0;
  };

  using Layers = std::vector<Layer>;

  /// A new composition without layers: id 0, no library, and not dirty, so that saving it writes
  /// nothing until something is set.
  static std::shared_ptr<Composition> create();

  /// A new composition of that name: id 0, no library, dirty.
  static std::shared_ptr<Composition> create(const String& name);

  /// A new composition with the same values: id 0, no library, dirty. It shares the materials,
  /// tags, drawing layer and custom properties that this one refers to.
  std::shared_ptr<Composition> clone() const;

  ~Composition();

  /// Takes over all values of `other` and marks this composition dirty; its id and library stay.
  Composition& operator=(const Composition& other);

  /// Equality of the values; ids and libraries do not count. Of the variable layer and of its
  /// maximum thickness only the presence counts.
  bool operator==(const Composition& other) const;
  bool operator!=(const Composition& other) const;

  using Object<Composition>::name;
  void name(const String& name);

  const String& description() const noexcept;
  void description(const String& description);

  const String& comments() const noexcept;
  void comments(const String& comments);

  /// `Other` by default.
  Type type() const noexcept;

  /// Stores the one type that `type` stands for: `Wall` when its bit is set, else `Roof`, else
  /// `Floor`, else `Other`.
  void type(Type type);

  /// The drawing layer of the whole composition; empty for none. It differs when it is another
  /// object, whatever its name.
  const std::shared_ptr<const veldra::Layer>& entity_layer() const noexcept;
  void entity_layer(const std::shared_ptr<const veldra::Layer>& layer);

  /// The layers from the outside to the inside.
  const Layers& layers() const noexcept;

  /// The layer at `index`, for reading, or for changing, which marks the composition dirty.
  /// Throws `std::out_of_range` ("invalid vector<T> subscript") for `index >= layers().size()`.
  const Layer& layer(std::uint64_t index) const;
  Layer& layer(std::uint64_t index, const ToModify&);

  /// The layers for changing; each call marks the composition dirty.
  Layers::iterator layers_begin(const ToModify&);
  Layers::iterator layers_end(const ToModify&);

  /// Adds a layer at the inside; no index moves. Marks the composition dirty.
  void appendLayer(const Layer& layer);

  /// Inserts a layer before the one at `index` and moves the indices that are at or behind it.
  /// Inserting at or before a core of one layer makes the core two layers deep. Inserting at or
  /// before a core whose first layer is the structural one can make another layer structural: set
  /// it again. Marks the composition dirty.
  ///
  /// Throws `std::out_of_range` for `index > layers().size()`, before anything is changed; and as
  /// `structural_layer` does.
  void insertLayer(std::uint64_t index, const Layer& layer);

  /// Moves the layer at `from` so that it stands at `to`, or at the end when `to` is beyond it,
  /// and the indices with it; the index of a variable layer that is moved becomes `to` as it is,
  /// also beyond the end. Marks the composition dirty.
  ///
  /// Throws `std::out_of_range` for `from >= layers().size()`: then nothing but the dirty mark has
  /// changed; and as `structural_layer` does.
  void moveLayer(std::uint64_t from, std::uint64_t to);

  /// Removes the layer at `index` and moves the indices behind it; a removed variable layer is
  /// cleared. Removing the first core layer leaves `first_core_layer` where it is; removing
  /// the last one, or the structural layer, sets that index to one less (from 0 to 4294967295) by
  /// the rules of the setters below. Removing a layer before a structural one that is the last core
  /// layer can make another layer structural: set it again. Marks the composition dirty.
  ///
  /// Throws `std::out_of_range` for `index >= layers().size()`, before anything is changed; and as
  /// `structural_layer` does.
  void removeLayer(std::uint64_t index);

  /// Setting it raises the last core layer to it where that is less, which limits both to the last
  /// layer, and pulls the structural layer into the core.
  /// Throws as `structural_layer` does.
  unsigned first_core_layer() const noexcept;
  void first_core_layer(unsigned index);

  /// Setting it stores at most the last layer, lowers the first core layer to it where that is
  /// more, and pulls the structural layer into the core. Without layers any value is stored.
  /// Throws as `structural_layer` does.
  unsigned last_core_layer() const noexcept;
  void last_core_layer(unsigned index);

  /// A value within the core is stored as it is. One before the core becomes the first core layer
  /// with `Structure`, else the first core layer; one behind it becomes the last core layer with
  /// `Structure`, else the last core layer.
  ///
  /// Throws `std::out_of_range` ("invalid vector<T> subscript") when the search meets a core index
  /// beyond the layers; what was stored before stays.
  unsigned structural_layer() const noexcept;
  void structural_layer(unsigned index);

  bool has_variable_layer() const noexcept;
  unsigned variable_layer() const noexcept;  ///< 0 while unset
  void variable_layer(unsigned index);       ///< checked against nothing
  void clear_variable_layer();               ///< always marks the composition dirty

  /// The thinnest that the variable layer may be.
  double variable_layer_min_thickness() const noexcept;
  void variable_layer_min_thickness(double thickness);

  /// The thickest that the variable layer may be, where there is a limit. NaN is stored as none.
  bool has_variable_layer_max_thickness() const noexcept;
  double variable_layer_max_thickness() const noexcept;  ///< 0 while unset
  void variable_layer_max_thickness(double thickness);
  void clear_variable_layer_max_thickness();  ///< always marks the composition dirty

 protected:
  struct Impl;

  Composition();
  explicit Composition(Impl* impl);

  Impl& impl() noexcept;
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

}  // namespace veldra

#endif
