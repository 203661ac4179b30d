// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_TABLE_COLUMNS_HPP
#define VELDRA_KIT_EXCHANGE_TABLE_COLUMNS_HPP

#include <veldra/kit/fields.hpp>
#include <veldra/library.hpp>

#include <string>
#include <vector>

namespace veldra::kit {

constexpr const char* kind_heading = "kind";
constexpr const char* layer_kind = "layer";
constexpr const char* property_prefix = "property:";

/// The heading of ids. They are those of one library, which stands behind them as a unit does.
std::string id_heading(const std::string& guid);

/// The heading of a field: its key, and its unit in brackets.
std::string heading_of(const FieldDescription& field, Unit library);

/// A column of the table of a kind.
template <class T>
struct TableColumn {
  std::string heading;
  const Field<T>* field;
};

/// Whether a table has a column for a field: it is stored with the object, and no part of another
/// table. The name and the id stand in each table.
bool has_column(const FieldDescription& field);

/// All columns of the table of a kind, in their order, with the ids of the library of a GUID.
template <class T>
std::vector<TableColumn<T>> table_columns(const Fields<T>& fields, Unit unit,
                                          const std::string& guid);

/// The headings of the table of layers.
std::vector<std::string> layer_headings(Unit library);

/// The first of these that is about the layer and not about where it is.
constexpr std::size_t first_layer_cell = 3;

/// The texts of the row of a layer, in the order of the headings.
std::vector<std::string> layer_texts(const Composition& composition, std::size_t index);

extern template std::vector<TableColumn<Material>> table_columns(const Fields<Material>&, Unit,
                                                                 const std::string&);
extern template std::vector<TableColumn<Composition>> table_columns(const Fields<Composition>&,
                                                                    Unit, const std::string&);

}  // namespace veldra::kit

#endif
