// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PARTS_HPP
#define VELDRA_TOOL_PARTS_HPP

#include <veldra/veldra.hpp>

#include <cstddef>
#include <set>

namespace veldra_tool {

/// Calls `look` with the ids of all objects of a kind, as many at once as a library of any size can
/// read into memory, in the order of the file: that of names leads from page to page.
template <class T, class Look>
void in_parts(const veldra::Library& library, const Look& look) {
  constexpr std::size_t at_once = 500;
  std::set<unsigned> part;
  for (const unsigned id : library.ids<T>()) {
    part.insert(part.end(), id);
    if (part.size() < at_once) continue;
    look(part);
    part.clear();
  }
  if (!part.empty()) look(part);
}

}  // namespace veldra_tool

#endif
