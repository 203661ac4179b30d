// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_ROW_FINGERPRINT_HPP
#define VELDRA_KIT_EXCHANGE_ROW_FINGERPRINT_HPP

#include "kit/exchange/table_columns.hpp"
#include "kit/fields/field.hpp"

#include <veldra/composition.hpp>

#include <map>
#include <string>
#include <vector>

namespace veldra::kit {

/// The heading of the column that tells how a row was when it was written.
constexpr const char* fingerprint_heading = "fingerprint";

/// The heading of that column in a workbook of the library of a GUID.
std::string fingerprint_heading_of(const std::string& guid);

/// The texts of a row by the headings of their columns.
using NamedCells = std::map<std::string, std::string>;

/// A short sum over the cells of a row that are not empty. Numbers count as far as spreadsheets
/// keep their digits.
std::string fingerprint_of_row(const NamedCells& cells);

/// The cells of the row of an object, without its id.
template <class T>
NamedCells cells_of(const T& object, const std::vector<TableColumn<T>>& columns) {
  NamedCells cells;
  for (const auto& column : columns) {
    if (column.field->origin == Origin::Derived) continue;
    cells[column.heading] = counted_text(*column.field, column.field->get(object));
  }
  return cells;
}

/// The cells of all layers of a composition. Which composition it is does not count.
NamedCells cells_of_layers(const Composition& composition, Unit library);

/// Adds the cells of one layer.
void add_layer_cell(NamedCells& cells, unsigned position, const std::string& heading,
                    const std::string& text);

}  // namespace veldra::kit

#endif
