// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_GBXML_FIELDS_HPP
#define VELDRA_KIT_EXCHANGE_GBXML_FIELDS_HPP

#include <optional>
#include <string>

namespace veldra::kit {

/// A part of an element of gbXML that a library has no place for: what stands in a child, or in an
/// attribute of a child.
struct GbxmlField {
  std::string element;
  unsigned number = 1;    ///< among the children of that name
  std::string attribute;  ///< empty for the content
};

/// The key by which reports and custom values know it, such as "Absorptance 2@type".
std::string key_of(const GbxmlField& field);

/// The field of a key; nothing for keys of other formats, and for what lies deeper.
std::optional<GbxmlField> gbxml_field(const std::string& key);

}  // namespace veldra::kit

#endif
