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
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  double alpha = 0.0;

  Color() = default;
  Color(double red_, double green_, double blue_, double alpha_)
      : red(red_), green(green_), blue(blue_), alpha(alpha_) {}

  /// Exact, without tolerance.
  bool operator==(const Color& other) const {
    return red == other.red && green == other.green && blue == other.blue && alpha == other.alpha;
  }
  bool operator!=(const Color& other) const { return !(*this == other); }
};

/// A point of the plane.
struct Point2d {
  double x = 0.0;
  double y = 0.0;

  Point2d() = default;
  Point2d(double x_, double y_) : x(x_), y(y_) {}

  /// Exact, without tolerance.
  bool operator==(const Point2d& other) const { return x == other.x && y == other.y; }
  bool operator!=(const Point2d& other) const { return !(*this == other); }
};

/// A hatch of a surface or of a section. The default is no pattern.
struct Pattern {
  /// Stored in files, never renumber. Other values are the host's and are kept.
  enum class Type : int { None = -1, Lines = 0 };

  Type type = Type::None;
  String name;
  double scale = 1.0;  ///< in the host's unit, never converted
  double angle = 0.0;  ///< in the host's unit; the program `veldra` draws degrees
  bool cross = false;  ///< hatched both ways

  Pattern() = default;

  /// A pattern of lines without a name.
  Pattern(double scale_, double angle_, bool cross_)
      : type(Type::Lines), scale(scale_), angle(angle_), cross(cross_) {}

  /// A named pattern, not crossed.
  Pattern(Type type_, const String& name_, double scale_, double angle_)
      : type(type_), name(name_), scale(scale_), angle(angle_) {}

  /// All five values, exactly.
  bool operator==(const Pattern& other) const {
    return type == other.type && name == other.name && scale == other.scale &&
           angle == other.angle && cross == other.cross;
  }
  bool operator!=(const Pattern& other) const { return !(*this == other); }
};

/// The unit of the thicknesses in a library. Stored in files, never renumber.
enum class Unit : int { Inches = 0, Millimetres = 1 };

/// What a length in the unit `from` is multiplied by to be one in the unit `to`: 25.4 from inches
/// to millimetres, and 0.03937007874015748 back. 1 where a unit is none of the two. Copying between
/// libraries uses the same numbers.
VELDRA_EXPORT double length_factor(Unit from, Unit to) noexcept;

/// The length `length` of the unit `from` in the unit `to`.
VELDRA_EXPORT double converted_length(double length, Unit from, Unit to) noexcept;

/// The kinds of objects. Stored in files, never renumber.
enum class ObjectType : int {
  Tag = 1,
  Asset = 2,
  MaterialType = 3,
  Material = 4,
  Composition = 5,
  CustomProperty = 6,
  Layer = 7
};

/// Identifies an object within one library: its kind and its id there.
struct ObjectKey {
  ObjectType type{};
  unsigned id = 0;

  ObjectKey() = default;
  ObjectKey(ObjectType type_, unsigned id_) : type(type_), id(id_) {}

  bool operator==(const ObjectKey& other) const { return type == other.type && id == other.id; }
  bool operator!=(const ObjectKey& other) const { return !(*this == other); }

  /// By kind, within a kind by id.
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
  static constexpr ObjectType type = kind;
};

#if __cplusplus < 201703L
template <ObjectType kind>
constexpr ObjectType ObjectTraitsOf<kind>::type;
#endif

template <>
struct ObjectTraits<Tag> : ObjectTraitsOf<ObjectType::Tag> {};
template <>
struct ObjectTraits<Asset> : ObjectTraitsOf<ObjectType::Asset> {};
template <>
struct ObjectTraits<MaterialType> : ObjectTraitsOf<ObjectType::MaterialType> {};
template <>
struct ObjectTraits<Material> : ObjectTraitsOf<ObjectType::Material> {};
template <>
struct ObjectTraits<Composition> : ObjectTraitsOf<ObjectType::Composition> {};
template <>
struct ObjectTraits<CustomProperty> : ObjectTraitsOf<ObjectType::CustomProperty> {};
template <>
struct ObjectTraits<Layer> : ObjectTraitsOf<ObjectType::Layer> {};

/// Selects the accessor that gives a list for changing, and marks its owner dirty:
/// `material->thicknesses(toModify).insert(12.5)`.
struct ToModify {};
constexpr ToModify toModify{};

}  // namespace veldra

#endif
