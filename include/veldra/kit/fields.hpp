// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_FIELDS_HPP
#define VELDRA_KIT_FIELDS_HPP

#include <veldra/kit/error.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/value.hpp>
#include <veldra/library.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace veldra::kit {

/// What a number measures, and so in which unit it is.
enum class Measure : int {
  None = 0,             ///< a number without a unit
  Length = 1,           ///< in the unit of the library
  Conductivity = 2,     ///< W/(m K)
  Density = 3,          ///< kg/m3
  SpecificHeat = 4,     ///< J/(kg K)
  Resistance = 5,       ///< m2 K/W
  Transmittance = 6,    ///< W/(m2 K)
  VapourThickness = 7,  ///< m, in libraries of whatever unit
  AreaMass = 8,         ///< kg/m2
  AreaCapacity = 9      ///< kJ/(m2 K)
};

/// The unit of a measure for people, such as "W/(m²K)"; empty for none.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string unit_text(Measure measure, Unit library);

/// How many units of a measure a unit is that somebody has written: 25.4 for "in" in a library in
/// millimetres. Blanks do not count, and "²" is "2". Empty if it is no unit of the measure.
///
/// - Lengths: mm, cm, m, in, ft.
/// - Densities also in g/cm3, specific heats also in kJ/(kg K), heat capacities of
///   areas also in J/(m2 K).
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::optional<double> unit_factor(const std::string& unit, Measure measure,
                                                    Unit library);

/// Where the value of a field comes from.
enum class Origin : int {
  Stored = 0,    ///< the object itself
  Custom = 1,    ///< a custom value of the object
  Asset = 2,     ///< an asset of a material; the library never writes assets
  Quantity = 3,  ///< a custom value of a known name, or else an asset
  Derived = 4    ///< computed from other values, or given by the library
};

/// What is known of a field without an object: a part of `Field`.
struct VELDRA_KIT_EXPORT FieldDescription {
  std::string key;    ///< the name of the member in the JSON format
  std::string group;  ///< the member in which it stands there, such as "custom_values"; else empty
  std::string label;  ///< the title of a column, without the unit
  std::vector<std::string> aliases;      ///< other names by which people call it
  Value::Kind kind = Value::Kind::Text;  ///< of which kind its values are
  Measure measure = Measure::None;       ///< of numbers
  Value initial;                         ///< the value in a new object; nothing if it has none
  Origin origin = Origin::Stored;        ///< where its values come from
  bool unique = false;    ///< no two objects of the kind in a library have the same value
  bool required = false;  ///< an object cannot be without it
  std::vector<std::string> choices;                ///< all texts that it can be; empty for any
  std::vector<std::pair<std::string, int>> words;  ///< texts that stand for whole numbers
  bool is_position = false;  ///< which layer: values count from 0, and texts for people from 1
  int decimals = -1;         ///< how many are shown to people; -1 for as many as there are

  /// Why it can only be read, as the end of a sentence; empty for figures.
  std::string fixed_because;

  /// The names of all objects to which it can refer; empty for a field that refers to none, and in
  /// fields without a library. Reads from the library.
  std::function<std::vector<std::string>()> names;

  /// What such an object is called, for people: "tag", "type".
  std::string refers_to;

  /// The key, behind that of its group and a point if it is in one: "thermal_asset.density".
  std::string name() const;
};

/// A value that a field cannot have: in `what()` stand the field, the value and what is allowed.
class VELDRA_KIT_EXPORT FieldError : public Error {
 public:
  /// Makes the error of a value for the field of that name.
  FieldError(const std::string& field, const std::string& value, const std::string& allowed);

  /// Copies the error.
  FieldError(const FieldError& other) = default;

  /// Destroys the error.
  ~FieldError() override;

  /// The name of the field.
  const std::string& field() const noexcept { return field_; }

  /// The value as a text.
  const std::string& value() const noexcept { return value_; }

  /// What would do, or why the field has none, as the end of a sentence.
  const std::string& allowed() const noexcept { return allowed_; }

 private:
  std::string field_;
  std::string value_;
  std::string allowed_;
};

/// A name of which there is no field. `what()` suggests the nearest, and lists what there is, each
/// field with other names of it in parentheses.
class VELDRA_KIT_EXPORT UnknownField : public Error {
 public:
  /// Makes the error of a name that none of the fields of a kind, in plural, has. Each field has
  /// all its names, first the one that it is listed by.
  UnknownField(const std::string& name, const std::string& kind,
               const std::vector<std::vector<std::string>>& fields);

  /// Copies the error.
  UnknownField(const UnknownField& other) = default;

  /// Destroys the error.
  ~UnknownField() override;

  /// The name.
  const std::string& name() const noexcept { return name_; }

 private:
  std::string name_;
};

/// What holds the value of a quantity of a material.
enum class QuantitySource : int {
  None = 0,            ///< nothing: it has no value
  CustomProperty = 1,  ///< the custom property of the known name
  ThermalAsset = 2,    ///< the thermal asset of the material
  StructuralAsset = 3  ///< its structural asset
};

/// What holds the value that a field of `Origin::Quantity` has for a material; nothing for other
/// fields.
///
/// Throws: `std::bad_alloc`, and `utf8::invalid_utf16` for a custom value that is malformed.
VELDRA_KIT_EXPORT QuantitySource quantity_source(const FieldDescription& field,
                                                 const Material& material);

/// A field of the objects of a kind: what it is, and how it is read and written.
///
///     const auto& manufacturer = fields.at("manufacturer");
///     manufacturer.set(*brick, "Ziegelwerk");
///     brick->save(library);
///
/// Thread rule: that of the objects.
template <class T>
class Field : public FieldDescription {
 public:
  /// Reads the value of an object.
  using Read = std::function<Value(const T&)>;

  /// Writes a value of the right kind into an object.
  using Write = std::function<void(T&, const Value&)>;

  /// Makes a field; one without `write` can only be read.
  Field(FieldDescription description, Read read, Write write)
      : FieldDescription(std::move(description)),
        read_(std::move(read)),
        write_(std::move(write)) {}

  /// Whether the field can be written.
  bool writable() const noexcept { return static_cast<bool>(write_); }

  /// The value of an object; nothing if it has none.
  ///
  /// Throws: `std::bad_alloc`, and `utf8::invalid_utf16` for a text that is malformed.
  Value get(const T& object) const { return read_(object); }

  /// Sets the value of an object in memory. Nothing sets the value of a new object. Objects that
  /// are named and not there are made when the object is saved: tags, drawing layers; material
  /// types and materials too in fields without a library.
  ///
  /// Throws, and changes nothing:
  /// - `FieldError`: the field can only be read, or cannot have the value.
  /// - a database error (`Library`).
  void set(T& object, const Value& value) const;

 private:
  Read read_;
  Write write_;
};

/// All fields of the objects of a kind, each once, in the order of the JSON format: those of the
/// objects themselves, one for each custom property that the objects can have, and figures that can
/// only be read.
///
///     const veldra::kit::Fields<veldra::Material> fields(*library);
///     for (const auto& field : fields) print(field.name(), field.get(*brick));
///
/// `T` is one of the six classes of objects.
template <class T>
class VELDRA_KIT_EXPORT Fields {
 public:
  /// An iterator over the fields.
  using Iterator = typename std::vector<Field<T>>::const_iterator;

  /// The fields that there are without a library: lengths are in `unit`, and there are no custom
  /// properties.
  ///
  /// Throws: `std::bad_alloc`.
  explicit Fields(Unit unit = Unit::Millimetres);

  /// The fields of the objects of a library, which must outlive them. Custom properties that come
  /// later are not among them.
  ///
  /// Throws: a database error (`Library`).
  explicit Fields(const Library& library);

  /// The first field.
  Iterator begin() const noexcept { return fields_.begin(); }

  /// The end of the fields.
  Iterator end() const noexcept { return fields_.end(); }

  /// Where the fields of custom properties stand, or would.
  Iterator custom_begin() const noexcept { return begin() + custom_begin_; }

  /// The unit of lengths.
  Unit unit() const noexcept { return unit_; }

  /// The field that somebody means: by its name, its key or another name of it, and if there is
  /// none by one of these without regard to case and accents. Null if there is none.
  ///
  /// Throws: `std::bad_alloc`.
  const Field<T>* find(const std::string& name) const;

  /// The same.
  ///
  /// Throws: `UnknownField`.
  const Field<T>& at(const std::string& name) const;

  /// The shortest name by which a field of these is found: its key, unless another one has that.
  ///
  /// Throws: `std::bad_alloc`.
  std::string short_name(const Field<T>& field) const;

  /// The short names of all fields.
  ///
  /// Throws: `std::bad_alloc`.
  std::vector<std::string> names() const;

  /// The error of a name that no field has.
  ///
  /// Throws: `std::bad_alloc`.
  UnknownField unknown(const std::string& name) const;

 private:
  std::vector<Field<T>> fields_;
  std::ptrdiff_t custom_begin_ = 0;
  Unit unit_;
};

/// The fields that there are without a library, with lengths in millimetres. They live as long as
/// the program.
///
/// Throws: `std::bad_alloc`.
template <class T>
const Fields<T>& built_in_fields() {
  static const Fields<T> fields;
  return fields;
}

/// Of these, the fields of a material that hold a value of a kind, and none but that by default. So
/// the name, the code and the references are not among the texts.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<const Field<Material>*> plain_material_fields(Value::Kind kind);

/// The value for a field that a text says, as somebody types it. An empty text is nothing.
///
/// - Numbers are decimal with a point, and may have a unit behind them: "100 mm", "4 in".
/// - Positions of layers count from 1, as people count them.
/// - "yes", "no", "true" and "false"; a choice in whatever case; else what `value_text` gives.
///
/// Numbers that measure something must be 0 or greater, and all numbers finite: what `value_text`
/// writes for others is refused, since nobody means it.
///
/// Throws:
/// - `FieldError`: the field cannot have the value.
/// - `std::bad_alloc`.
VELDRA_KIT_EXPORT Value value_from_text(const FieldDescription& field, const std::string& text,
                                        Unit library);

/// The value of a field as people read and type it, which `value_from_text` reads: `value_text`,
/// but positions of layers count from 1, and functions have their words.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string field_text(const FieldDescription& field, const Value& value);

/// The same of a field of the objects of a kind, by its name as in `FieldChange`.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string field_text(ObjectType kind, const std::string& field,
                                         const Value& value);

/// A text as one of the library's.
///
/// Throws `Error`: it is not UTF-8, or has a zero byte, which the library takes for the end.
VELDRA_KIT_EXPORT String library_text(const std::string& text);

extern template class Fields<Tag>;
extern template class Fields<Layer>;
extern template class Fields<MaterialType>;
extern template class Fields<CustomProperty>;
extern template class Fields<Material>;
extern template class Fields<Composition>;

extern template VELDRA_KIT_EXPORT void Field<Tag>::set(Tag&, const Value&) const;
extern template VELDRA_KIT_EXPORT void Field<Layer>::set(Layer&, const Value&) const;
extern template VELDRA_KIT_EXPORT void Field<MaterialType>::set(MaterialType&, const Value&) const;
extern template VELDRA_KIT_EXPORT void Field<CustomProperty>::set(CustomProperty&,
                                                                  const Value&) const;
extern template VELDRA_KIT_EXPORT void Field<Material>::set(Material&, const Value&) const;
extern template VELDRA_KIT_EXPORT void Field<Composition>::set(Composition&, const Value&) const;

}  // namespace veldra::kit

#endif
