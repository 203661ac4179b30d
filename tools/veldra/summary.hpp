// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_SUMMARY_HPP
#define VELDRA_TOOL_SUMMARY_HPP

#include "json.hpp"
#include "table.hpp"

#include <veldra/veldra.hpp>

#include <string>
#include <vector>

namespace veldra_tool {

/// What a library is and how much is in it.
Json facts_of(const veldra::Library& library);

/// How many objects of each kind there are.
Json counts_of(const veldra::Library& library);

// One line about an object, for lists.

template <class T>
std::vector<Table::Column> summary_columns(veldra::Unit) {
  return {{"id", Align::Right}, {"name"}};
}
template <>
std::vector<Table::Column> summary_columns<veldra::CustomProperty>(veldra::Unit unit);
template <>
std::vector<Table::Column> summary_columns<veldra::Material>(veldra::Unit unit);
template <>
std::vector<Table::Column> summary_columns<veldra::Composition>(veldra::Unit unit);

std::vector<std::string> summary_cells(const veldra::Tag& tag, veldra::Unit unit);
std::vector<std::string> summary_cells(const veldra::Layer& layer, veldra::Unit unit);
std::vector<std::string> summary_cells(const veldra::MaterialType& type, veldra::Unit unit);
std::vector<std::string> summary_cells(const veldra::CustomProperty& property, veldra::Unit unit);
std::vector<std::string> summary_cells(const veldra::Material& material, veldra::Unit unit);
std::vector<std::string> summary_cells(const veldra::Composition& composition, veldra::Unit unit);

Json summary_of(const veldra::Tag& tag);
Json summary_of(const veldra::Layer& layer);
Json summary_of(const veldra::MaterialType& type);
Json summary_of(const veldra::CustomProperty& property);
Json summary_of(const veldra::Material& material);
Json summary_of(const veldra::Composition& composition);

/// The names of the tags with ", " between them.
template <class Owner>
std::string tags_text(const Owner& owner) {
  std::string text;
  for (const auto& tag : owner.tags()) text += (text.empty() ? "" : ", ") + tag->name().utf8();
  return text;
}

std::string thicknesses_text(const veldra::Material& material, veldra::Unit unit);

/// A length for people, without its unit: two decimals of millimetres, three of inches.
std::string length_text(double length, veldra::Unit unit);

}  // namespace veldra_tool

#endif
