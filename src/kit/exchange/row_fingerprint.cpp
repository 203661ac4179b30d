// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/row_fingerprint.hpp"

#include "kit/text/sha256.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

namespace veldra::kit {

namespace {

/// Spreadsheets keep 15 digits.
std::string canonical(const std::string& text) {
  const auto number = number_in(text);
  return number ? fmt::format("{:.15g}", *number) : text;
}

}  // namespace

std::string fingerprint_heading_of(const std::string& guid) {
  return fmt::format("{} [{}]", fingerprint_heading, guid);
}

std::string fingerprint_of_row(const NamedCells& cells) {
  constexpr std::size_t digits = 16;
  Sha256 sum;
  for (const auto& [heading, text] : cells) {
    if (text.empty()) continue;
    sum.add(heading);
    sum.add(canonical(text));
  }
  return sum.digits().substr(0, digits);
}

void add_layer_cell(NamedCells& cells, unsigned position, const std::string& heading,
                    const std::string& text) {
  cells[fmt::format("{} {}", position, heading)] = text;
}

NamedCells cells_of_layers(const Composition& composition, Unit library) {
  const auto headings = layer_headings(library);
  NamedCells cells;
  for (std::size_t layer = 0; layer < composition.layers().size(); ++layer) {
    const auto texts = layer_texts(composition, layer);
    for (std::size_t i = first_layer_cell; i < headings.size(); ++i) {
      add_layer_cell(cells, static_cast<unsigned>(layer + 1), headings[i], texts[i]);
    }
  }
  return cells;
}

}  // namespace veldra::kit
