// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_REFERENCES_HPP
#define VELDRA_TOOL_REFERENCES_HPP

#include <veldra/veldra.hpp>

#include <map>
#include <string>
#include <vector>

namespace veldra_tool {

/// One object that refers to another.
struct Reference {
  veldra::ObjectKey from;
  std::string name;  ///< of the object that refers
  std::string role;  ///< as what it refers to the other: "tag", "layer 2", ...
};

/// The references to each object of a library. Those from assets that no material has do not
/// show.
using References = std::map<veldra::ObjectKey, std::vector<Reference>>;

References references_in(const veldra::Library& library);

/// The references to one object; reads only what refers to it.
std::vector<Reference> references_to(const veldra::Library& library, const veldra::ObjectKey& key);

}  // namespace veldra_tool

#endif
