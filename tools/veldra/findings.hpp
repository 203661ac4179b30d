// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FINDINGS_HPP
#define VELDRA_TOOL_FINDINGS_HPP

#include <veldra/veldra.hpp>

#include <string>
#include <vector>

namespace veldra_tool {

/// Something in a library that is not as it should be.
struct Finding {
  std::string object;  ///< such as "material 'Oak'"; "file" or "library" for all of it
  std::string sentence;
};

std::vector<Finding> findings_in(const veldra::Library& library);

}  // namespace veldra_tool

#endif
