// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_WIDE_ID_HPP
#define VELDRA_STORE_WIDE_ID_HPP

#include <limits>

namespace veldra {

/// Ids are read from files as wide as these hold them, so that one that no object can have never
/// turns into that of another. Where it must become the id of an object it is the largest, which is
/// given to nobody.
inline unsigned narrowed_id(unsigned long long id) {
  constexpr unsigned largest = std::numeric_limits<unsigned>::max();
  return id < largest ? static_cast<unsigned>(id) : largest;
}

}  // namespace veldra

#endif
