// SPDX-License-Identifier: GPL-2.0-or-later
#include "columns.hpp"

#include "summary.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <cmath>

namespace veldra_tool {

namespace {

std::string number_text(const kit::FieldDescription& field, double number, veldra::Unit unit) {
  if (field.measure == kit::Measure::Length) return length_text(number, unit);
  if (field.decimals < 0) return rounded_number(number, 6);
  return fmt::format("{:.{}f}", number, field.decimals);
}

template <class List, class TextOf>
std::string list_text(const List& list, TextOf text_of) {
  std::string text;
  for (const auto& each : list) text += (text.empty() ? "" : ", ") + text_of(each);
  return text;
}

}  // namespace

std::vector<std::string> usual_columns(veldra::ObjectType kind) {
  switch (kind) {
    case veldra::ObjectType::Material:
      return {"id", "name", "type", "code", "thicknesses", "tags"};
    case veldra::ObjectType::Composition:
      return {"id", "name", "type", "layer_count", "total_thickness", "transmittance", "tags"};
    case veldra::ObjectType::CustomProperty:
      return {"id", "name", "object_type"};
    default:
      return {"id", "name"};
  }
}

Table::Column column_of(const kit::FieldDescription& field, veldra::Unit unit) {
  const bool is_number =
      field.kind == kit::Value::Kind::Number || field.kind == kit::Value::Kind::WholeNumber;
  const std::string unit_text = kit::unit_text(field.measure, unit);
  const bool has_unit = is_number || field.kind == kit::Value::Kind::Numbers;
  return {
      has_unit && !unit_text.empty() ? fmt::format("{} [{}]", field.label, unit_text) : field.label,
      is_number ? Align::Right : Align::Left, field.key == "name"};
}

std::string cell_of(const kit::FieldDescription& field, const kit::Value& value,
                    veldra::Unit unit) {
  switch (value.kind()) {
    case kit::Value::Kind::Nothing:
      return field.origin == kit::Origin::Derived ? "–" : "";
    case kit::Value::Kind::Number:
      return number_text(field, value.as<double>(), unit);
    case kit::Value::Kind::Numbers:
      return list_text(value.as<kit::Value::Numbers>(),
                       [&](double number) { return number_text(field, number, unit); });
    case kit::Value::Kind::Texts:
      return list_text(value.as<kit::Value::Texts>(), [](const std::string& text) { return text; });
    default:
      return kit::field_text(field, value);
  }
}

}  // namespace veldra_tool
