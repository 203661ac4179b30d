// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_PLACE_HPP
#define VELDRA_TOOL_IMPORT_PLACE_HPP

#include "failure.hpp"

#include <fmt/format.h>

#include <string>

namespace veldra_tool {

/// A place in a source, as it leads a message.
inline std::string place(const std::string& file, unsigned line) {
  return fmt::format("{}, line {}", in_quotes(file), line);
}

}  // namespace veldra_tool

#endif
