// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_SUMMARY_HPP
#define VELDRA_TOOL_SUMMARY_HPP

#include "json.hpp"
#include "kit.hpp"

#include <veldra/veldra.hpp>

#include <string>

namespace veldra_tool {

/// What a library is and how much is in it.
Json facts_of(const veldra::Library& library);

/// How many objects of each kind there are.
Json counts_of(const veldra::Library& library);

// An object for lists.

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

/// The resistance of a layer for people; "–" for what is not known or does not count.
std::string resistance_text(const kit::Transmission& transmission, std::size_t layer);

}  // namespace veldra_tool

#endif
