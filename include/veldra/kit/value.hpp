// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_VALUE_HPP
#define VELDRA_KIT_VALUE_HPP

#include <veldra/kit/export.hpp>
#include <veldra/values.hpp>

#include <string>
#include <variant>
#include <vector>

namespace veldra::kit {

/// One layer of a composition, as a value: the material by its name.
struct LayerValue {
  std::string material;  ///< the name of the material
  double thickness = 0;  ///< in the unit of the library
  int function = 0;      ///< a number of `Material::Function`, or the host's own

  /// Whether all three are equal, without tolerance. NaN is equal to NaN here.
  VELDRA_KIT_EXPORT bool operator==(const LayerValue& other) const;

  /// The opposite of `==`.
  bool operator!=(const LayerValue& other) const { return !(*this == other); }
};

/// The value of a field (`Field`), of one of a few kinds. A plain value that copies freely.
///
///     veldra::kit::Value value = field.get(*brick);
///     if (!value.is_nothing()) print(veldra::kit::value_text(value));
///
/// Texts are UTF-8. Objects to which a field refers, such as tags, are texts: their names.
///
/// Throws: nothing but `std::bad_alloc`, unless a function says more.
class VELDRA_KIT_EXPORT Value {
 public:
  /// The kinds of values.
  enum class Kind : int {
    Nothing = 0,      ///< there is no value
    YesNo = 1,        ///< `bool`
    WholeNumber = 2,  ///< `long long`
    Number = 3,       ///< `double`; NaN is a number that nobody knows
    Text = 4,         ///< `std::string`
    Texts = 5,        ///< a list of texts
    Numbers = 6,      ///< a list of numbers
    Color = 7,        ///< a colour
    Pattern = 8,      ///< a hatch
    Point = 9,        ///< a point of the plane
    Layers = 10       ///< the layers of a composition
  };

  /// A list of texts.
  using Texts = std::vector<std::string>;

  /// A list of numbers.
  using Numbers = std::vector<double>;

  /// A list of layers, from the outside to the inside.
  using Layers = std::vector<LayerValue>;

  /// Makes nothing.
  Value() = default;

  /// Makes yes or no.
  Value(bool yes) : data_(yes) {}

  /// Makes a whole number.
  Value(int number) : data_(static_cast<long long>(number)) {}

  /// Makes a whole number.
  Value(unsigned number) : data_(static_cast<long long>(number)) {}

  /// Makes a whole number.
  Value(long long number) : data_(number) {}

  /// Makes a number.
  Value(double number) : data_(number) {}

  /// Makes a text.
  Value(std::string text) : data_(std::move(text)) {}

  /// Makes a text, which must not be null.
  Value(const char* text) : data_(std::string(text)) {}

  /// Makes a list of texts.
  Value(Texts texts) : data_(std::move(texts)) {}

  /// Makes a list of numbers.
  Value(Numbers numbers) : data_(std::move(numbers)) {}

  /// Makes a colour.
  Value(const veldra::Color& color) : data_(color) {}

  /// Makes a hatch.
  Value(const veldra::Pattern& pattern) : data_(pattern) {}

  /// Makes a point.
  Value(const Point2d& point) : data_(point) {}

  /// Makes a list of layers.
  Value(Layers layers) : data_(std::move(layers)) {}

  /// The kind of the value.
  Kind kind() const noexcept { return static_cast<Kind>(data_.index()); }

  /// Whether there is no value.
  bool is_nothing() const noexcept { return kind() == Kind::Nothing; }

  /// Whether there is nothing to see: no value, an empty text or list, a number that nobody knows,
  /// no hatch, or the colour that stands for none.
  bool is_empty() const;

  /// The value as one of the C++ types that are named with the kinds.
  ///
  /// Throws `std::bad_variant_access`: it is of another kind.
  template <class T>
  const T& as() const {
    return std::get<T>(data_);
  }

  /// Whether kinds and values are equal, without tolerance. NaN is equal to NaN here, so that what
  /// was read and saved is equal to itself.
  bool operator==(const Value& other) const;

  /// The opposite of `==`.
  bool operator!=(const Value& other) const { return !(*this == other); }

 private:
  std::variant<std::monostate, bool, long long, double, std::string, Texts, Numbers, veldra::Color,
               veldra::Pattern, Point2d, Layers>
      data_;
};

/// A kind of values for people, such as "a whole number".
VELDRA_KIT_EXPORT std::string name_of(Value::Kind kind);

/// The value as a text that `value_from_text` reads, without a unit: numbers with all their digits,
/// "yes" and "no", what belongs together with "; " between, and an empty text for nothing.
///
/// - A colour is red; green; blue; alpha.
/// - A hatch is type; name; scale; angle; whether it is crossed.
/// - A layer is material | thickness | function.
/// - A number that is not finite is "inf", "-inf" or, in a list, a colour, a hatch, a point and a
///   layer, "nan". These are for people: no text is read as such a number.
/// - A text in a list stands in double quotes where it would not read back otherwise.
///
/// Throws: `std::bad_alloc`, and `utf8::invalid_utf16` for the name of a hatch that is malformed.
VELDRA_KIT_EXPORT std::string value_text(const Value& value);

}  // namespace veldra::kit

#endif
