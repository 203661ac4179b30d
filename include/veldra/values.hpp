// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_VALUES_HPP
#define VELDRA_VALUES_HPP

#include <veldra/export.hpp>
#include <veldra/string.hpp>

namespace veldra {

class Tag;
class Asset;
class MaterialType;
class Material;
class Composition;
class CustomProperty;
class Layer;

/// A colour of four components, each usually from 0 to 1. The default is transparent black.
struct Color {
  double red = 0.0;    ///< the share of red
  double green = 0.0;  ///< the share of green
  double blue = 0.0;   ///< the share of blue
  double alpha = 0.0;  ///< 0 is transparent, 1 is opaque

  /// Makes transparent black, which the program `veldra` takes for no colour.
  Color() = default;

  /// Makes a colour of its components. No number is checked.
  Color(double red_, double green_, double blue_, double alpha_)
      : red(red_), green(green_), blue(blue_), alpha(alpha_) {}

  /// Whether all components are equal, without tolerance.
  bool operator==(const Color& other) const {
    return red == other.red && green == other.green && blue == other.blue && alpha == other.alpha;
  }

  /// The opposite of `==`.
  bool operator!=(const Color& other) const { return !(*this == other); }
};

/// A point of the plane, in the host's unit. Never converted.
struct Point2d {
  double x = 0.0;  ///< the first coordinate
  double y = 0.0;  ///< the second coordinate

  /// Makes the origin.
  Point2d() = default;

  /// Makes a point of its coordinates.
  Point2d(double x_, double y_) : x(x_), y(y_) {}

  /// Whether both coordinates are equal, without tolerance.
  bool operator==(const Point2d& other) const { return x == other.x && y == other.y; }

  /// The opposite of `==`.
  bool operator!=(const Point2d& other) const { return !(*this == other); }
};

/// A hatch of a surface or of a section. The default is no pattern.
///
/// A host either draws lines by scale, angle and crossing, or looks for a hatch by its name. The
/// program `veldra` knows names such as "Concrete" and "Insulation", and draws lines for others.
struct Pattern {
  /// The kind of hatch. The numbers are stored in files and never change. Other numbers are the
  /// host's own: the library stores and returns them as they are.
  enum class Type : int {
    None = -1,  ///< no hatch
    Lines = 0   ///< lines, or the hatch of that name
  };

  Type type = Type::None;  ///< the kind of hatch
  String name;             ///< the name of a hatch that the host knows; empty for plain lines
  double scale = 1.0;      ///< the size of the hatch, in the host's unit; never converted
  double angle = 0.0;      ///< in the host's unit; degrees in the program `veldra`
  bool cross = false;      ///< whether a second set of lines crosses the first one

  /// Makes no pattern.
  Pattern() = default;

  /// Makes a pattern of lines without a name.
  Pattern(double scale_, double angle_, bool cross_)
      : type(Type::Lines), scale(scale_), angle(angle_), cross(cross_) {}

  /// Makes a named pattern that is not crossed.
  ///
  /// Throws: `std::bad_alloc`.
  Pattern(Type type_, const String& name_, double scale_, double angle_)
      : type(type_), name(name_), scale(scale_), angle(angle_) {}

  /// Whether all five values are equal, without tolerance.
  bool operator==(const Pattern& other) const {
    return type == other.type && name == other.name && scale == other.scale &&
           angle == other.angle && cross == other.cross;
  }

  /// The opposite of `==`.
  bool operator!=(const Pattern& other) const { return !(*this == other); }
};

/// The unit of all thicknesses in a library. The numbers are stored in files and never change.
enum class Unit : int {
  Inches = 0,      ///< 25.4 millimetres each
  Millimetres = 1  ///< also the unit of an empty file that `Library::open` makes a library
};

/// The factor by which a length in the unit `from` is multiplied to be one in the unit `to`:
///
/// - 25.4 from inches to millimetres,
/// - 0.03937007874015748 from millimetres to inches,
/// - 1 between equal units, and where a unit is none of the two.
///
/// Copying between libraries uses the same numbers.
VELDRA_EXPORT double length_factor(Unit from, Unit to) noexcept;

/// Converts the length `length` from the unit `from` to the unit `to`, by `length_factor`.
VELDRA_EXPORT double converted_length(double length, Unit from, Unit to) noexcept;

/// The kinds of objects. The numbers are stored in files and never change.
enum class ObjectType : int {
  Tag = 1,             ///< `veldra::Tag`
  Asset = 2,           ///< `StructuralAsset` and `ThermalAsset`
  MaterialType = 3,    ///< `veldra::MaterialType`
  Material = 4,        ///< `veldra::Material`
  Composition = 5,     ///< `veldra::Composition`
  CustomProperty = 6,  ///< `veldra::CustomProperty`
  Layer = 7            ///< a drawing layer, `veldra::Layer`
};

/// Names an object within one library by its kind and its id.
struct ObjectKey {
  ObjectType type{};  ///< the kind; 0 by default, which is none
  unsigned id = 0;    ///< the id among the objects of the kind; 0 by default, which is none

  /// Makes a key that names no object.
  ObjectKey() = default;

  /// Makes the key of an object.
  ObjectKey(ObjectType type_, unsigned id_) : type(type_), id(id_) {}

  /// Whether kind and id are equal.
  bool operator==(const ObjectKey& other) const { return type == other.type && id == other.id; }

  /// The opposite of `==`.
  bool operator!=(const ObjectKey& other) const { return !(*this == other); }

  /// Orders keys by kind, and within a kind by id.
  bool operator<(const ObjectKey& other) const {
    return type != other.type ? type < other.type : id < other.id;
  }
};

/// The kind of a class: `ObjectTraits<Material>::type` is `ObjectType::Material`.
template <class T>
struct ObjectTraits;

/// Gives `ObjectTraits` its constant.
template <ObjectType kind>
struct ObjectTraitsOf {
  static constexpr ObjectType type = kind;  ///< the kind of the class
};

#if __cplusplus < 201703L
template <ObjectType kind>
constexpr ObjectType ObjectTraitsOf<kind>::type;
#endif

/// The kind of tags.
template <>
struct ObjectTraits<Tag> : ObjectTraitsOf<ObjectType::Tag> {};

/// The kind of assets.
template <>
struct ObjectTraits<Asset> : ObjectTraitsOf<ObjectType::Asset> {};

/// The kind of material types.
template <>
struct ObjectTraits<MaterialType> : ObjectTraitsOf<ObjectType::MaterialType> {};

/// The kind of materials.
template <>
struct ObjectTraits<Material> : ObjectTraitsOf<ObjectType::Material> {};

/// The kind of compositions.
template <>
struct ObjectTraits<Composition> : ObjectTraitsOf<ObjectType::Composition> {};

/// The kind of custom properties.
template <>
struct ObjectTraits<CustomProperty> : ObjectTraitsOf<ObjectType::CustomProperty> {};

/// The kind of drawing layers.
template <>
struct ObjectTraits<Layer> : ObjectTraitsOf<ObjectType::Layer> {};

/// The type of `toModify`.
struct ToModify {};

/// Selects the accessor that gives a list for changing, and marks its owner dirty:
/// `material->thicknesses(toModify).insert(12.5)`.
constexpr ToModify toModify{};

}  // namespace veldra

#endif
