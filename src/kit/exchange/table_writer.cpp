// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/lost_values.hpp"
#include "kit/exchange/objects_by_name.hpp"
#include "kit/exchange/table_columns.hpp"
#include "kit/exchange/table_text.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/exchange/written_identity.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

namespace veldra::kit {

namespace {

/// Writes one table, a row at a time.
class TableWriter {
 public:
  TableWriter(const Library& library, const TextSink& sink, const WriteRules& rules)
      : library_(library),
        sink_(sink),
        rules_(rules),
        identity_(library, rules),
        style_{rules.separator, rules.decimal} {}

  WriteReport write() {
    if (rules_.table == "materials") {
      write_objects<Material>();
    } else if (rules_.table == "compositions") {
      write_objects<Composition>();
    } else if (rules_.table == "layers") {
      write_layers();
    } else {
      throw Error(fmt::format("there is no table '{}'; there are materials, compositions, layers",
                              rules_.table));
    }
    report_.not_written = lost_.fields();
    return std::move(report_);
  }

 private:
  template <class T>
  void write_objects() {
    const Fields<T> fields(library_);
    const auto columns = table_columns(fields, library_.unit(), identity_.guid());
    Cells headings{kind_heading};
    for (const auto& column : columns) headings.push_back(cell_of_text(column.heading, style_));
    sink_(row_text(headings, style_));
    const auto kind = singular_of(ObjectTraits<T>::type);
    for_each_by_name<T>(library_, [&](const T& object, std::size_t) {
      Cells cells{kind};
      for (const auto& column : columns) {
        cells.push_back(cell_of(object, *column.field));
      }
      sink_(row_text(cells, style_));
      count_assets(fields, object, lost_);
      ++report_.written[kind];
      if (rules_.progress) rules_.progress();
    });
  }

  template <class T>
  std::string cell_of(const T& object, const Field<T>& field) const {
    if (field.origin == Origin::Derived) return fmt::format("{}", identity_.id_of(object));
    return kit::cell_of(field, field.get(object), style_);
  }

  void write_layers() {
    sink_(row_text(layer_headings(library_.unit()), style_));
    for_each_by_name<Composition>(library_, [&](const Composition& composition, std::size_t) {
      for (std::size_t i = 0; i < composition.layers().size(); ++i) write_layer(composition, i);
      if (rules_.progress) rules_.progress();
    });
  }

  void write_layer(const Composition& composition, std::size_t index) {
    static const auto& number = built_in_fields<Composition>().at("variable_layer_max_thickness");
    const auto texts = layer_texts(composition, index);
    sink_(row_text(
        {texts[0], cell_of_text(texts[1], style_), texts[2], cell_of_text(texts[3], style_),
         kit::cell_of(number, composition.layers()[index].thickness(), style_), texts[5]},
        style_));
    ++report_.written[layer_kind];
  }

  const Library& library_;
  const TextSink& sink_;
  const WriteRules& rules_;
  WrittenIdentity identity_;
  TableStyle style_;
  FieldCounts lost_;
  WriteReport report_;
};

}  // namespace

WriteReport write_table(const Library& library, const TextSink& sink, const WriteRules& rules) {
  return TableWriter(library, sink, rules).write();
}

}  // namespace veldra::kit
