// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/table_columns.hpp"

#include <veldra/kit/kinds.hpp>

#include <fmt/format.h>

#include <map>
#include <set>

namespace veldra::kit {

namespace {

std::string plain_heading(const FieldDescription& field) { return property_prefix + field.key; }

/// No word for a kind has a colon, so that no two of these are the same.
std::string qualified_heading(const FieldDescription& field, ObjectType kind) {
  const bool common = field.group == "common_custom_values";
  return fmt::format("{}{}:{}", property_prefix, common ? "all" : singular_of(kind), field.key);
}

/// The headings of custom properties: with the kind of object that the property is for where its
/// name alone would not tell it from others.
template <class T>
class PropertyHeadings {
 public:
  explicit PropertyHeadings(const std::vector<TableColumn<T>>& columns) {
    for (const auto& column : columns) {
      if (column.field->origin == Origin::Custom) fields_.push_back(column.field);
    }
    std::map<std::string, unsigned> sharers;
    for (const auto* field : fields_) ++sharers[field->key];
    for (const auto* field : fields_) {
      if (sharers[field->key] > 1) qualify(*field);
    }
    while (qualify_next()) {
    }
  }

  std::string operator()(const Field<T>& field) const {
    return qualified_.count(&field) > 0 ? qualified_heading(field, ObjectTraits<T>::type)
                                        : plain_heading(field);
  }

 private:
  void qualify(const Field<T>& field) {
    qualified_.insert(&field);
    taken_.insert(qualified_heading(field, ObjectTraits<T>::type));
  }

  /// A name may itself look like a kind with a name.
  bool qualify_next() {
    for (const auto* field : fields_) {
      if (qualified_.count(field) > 0 || taken_.count(plain_heading(*field)) == 0) continue;
      qualify(*field);
      return true;
    }
    return false;
  }

  std::vector<const Field<T>*> fields_;
  std::set<const Field<T>*> qualified_;
  std::set<std::string> taken_;
};

}  // namespace

std::string id_heading(const std::string& guid) { return fmt::format("id [{}]", guid); }

std::string heading_of(const FieldDescription& field, Unit library) {
  const auto unit = unit_text(field.measure, library);
  return unit.empty() ? field.key : fmt::format("{} [{}]", field.key, unit);
}

bool has_column(const FieldDescription& field) {
  if (field.key == "id" && field.origin == Origin::Derived) return true;
  const bool is_stored = field.origin == Origin::Stored || field.origin == Origin::Custom;
  return is_stored && field.kind != Value::Kind::Layers;
}

template <class T>
std::vector<TableColumn<T>> table_columns(const Fields<T>& fields, Unit unit,
                                          const std::string& guid) {
  std::vector<TableColumn<T>> columns;
  for (const auto& field : fields) {
    if (has_column(field)) columns.push_back({"", &field});
  }
  const PropertyHeadings<T> property_heading(columns);
  for (auto& column : columns) {
    const auto& field = *column.field;
    const bool is_property = field.origin == Origin::Custom;
    column.heading = is_property ? property_heading(field) : heading_of(field, unit);
    if (field.origin == Origin::Derived) column.heading = id_heading(guid);
  }
  return columns;
}

std::vector<std::string> layer_headings(Unit library) {
  return {kind_heading,
          "composition",
          "position",
          "material",
          fmt::format("thickness [{}]", unit_text(Measure::Length, library)),
          "function"};
}

std::vector<std::string> layer_texts(const Composition& composition, std::size_t index) {
  const auto& layer = composition.layers()[index];
  return {layer_kind,
          composition.name().utf8(),
          fmt::format("{}", index + 1),
          layer.material() ? layer.material()->name().utf8() : std::string(),
          value_text(layer.thickness()),
          fmt::format("{}", static_cast<int>(layer.function()))};
}

template std::vector<TableColumn<Material>> table_columns(const Fields<Material>&, Unit,
                                                          const std::string&);
template std::vector<TableColumn<Composition>> table_columns(const Fields<Composition>&, Unit,
                                                             const std::string&);

}  // namespace veldra::kit
