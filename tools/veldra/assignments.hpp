// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_ASSIGNMENTS_HPP
#define VELDRA_TOOL_ASSIGNMENTS_HPP

#include "editing.hpp"
#include "failure.hpp"
#include "kinds.hpp"
#include "text.hpp"

#include <veldra/veldra.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
}

namespace veldra_tool {

/// What "FIELD=VALUE" says.
struct Assignment {
  std::string field;
  std::string value;
};

/// What such texts say. Back-quotes delimit a field with "=" in its name. Throws a
/// `CLI::ParseError` for any other text, which names `option`.
std::vector<Assignment> assignments_in(const std::vector<std::string>& texts,
                                       const std::string& option);

/// The option for custom properties that may have to be made.
void add_properties(CLI::App& command, std::vector<std::string>& properties);

/// What is to be set: fields that there are, and custom properties that there may be.
struct Assigned {
  std::vector<Assignment> fields;
  std::vector<Assignment> properties;
};

/// Sets fields of objects of a class that a library has.
template <class T>
class Setter {
 public:
  /// Both must outlive it. Throws `kit::Error` for a field that is not there and for a value that
  /// it cannot have, and `LibraryFailure` for a field of which no two of the `count` objects that
  /// are to be set may have the same value.
  Setter(const veldra::Library& library, const Assigned& assigned, std::size_t count)
      : fields_(library), assigned_(assigned) {
    for (const auto& each : assigned.fields) {
      const auto& field = field_named(each.field);
      require_single(field, each.value, count);
      values_.emplace_back(&field, kit::value_from_text(field, each.value, fields_.unit()));
    }
    std::stable_sort(values_.begin(), values_.end(), [](const auto& left, const auto& right) {
      return rank_of(*left.first) < rank_of(*right.first);
    });
    if (is_built<T> || assigned.properties.empty()) return;
    throw LibraryFailure("only materials and compositions have custom properties");
  }

  void operator()(T& object) const {
    for (const auto& [field, value] : values_) field->set(object, value);
    require_positions(object);
    if constexpr (is_built<T>) set_properties(object);
  }

 private:
  const kit::Field<T>& field_named(const std::string& name) const {
    if (is_built<T> && fields_.find(name) == nullptr) {
      throw LibraryFailure(fmt::format("{}; --property makes a custom property of that name",
                                       printable(fields_.unknown(name).what())));
    }
    return fields_.at(name);
  }

  static void require_single(const kit::Field<T>& field, const std::string& value,
                             std::size_t count) {
    if (!field.unique || count < 2 || value.empty()) return;
    throw LibraryFailure(fmt::format("{} can be {} for one object only, and these are {}",
                                     in_quotes(field.name()), in_quotes(value), count));
  }

  /// Fields that move each other are set in an order in which they do not. All others go first.
  static std::ptrdiff_t rank_of(const kit::Field<T>& field) {
    static constexpr std::array bound{"layers", "last_core_layer", "first_core_layer",
                                      "structural_layer"};
    const auto* const found = std::find(bound.begin(), bound.end(), field.name());
    return found == bound.end() ? -1 : found - bound.begin();
  }

  /// Positions that do not go with each other have moved each other.
  void require_positions(const T& object) const {
    for (const auto& [field, value] : values_) {
      if (value.kind() != kit::Value::Kind::WholeNumber || field->get(object) == value) continue;
      throw kit::FieldError(field->name(), kit::field_text(*field, value),
                            "it does not go with the other values that are given");
    }
  }

  void set_properties(T& object) const {
    for (const auto& each : assigned_.properties) {
      const auto name = kit::library_text(each.field);
      if (each.value.empty()) {
        object.clear_custom_value(name);
      } else {
        object.custom_value(name, kit::library_text(each.value));
      }
    }
  }

  kit::Fields<T> fields_;
  const Assigned& assigned_;
  std::vector<std::pair<const kit::Field<T>*, kit::Value>> values_;
};

}  // namespace veldra_tool

#endif
