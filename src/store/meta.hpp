// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_META_HPP
#define VELDRA_STORE_META_HPP

#include <veldra/string.hpp>
#include <veldra/values.hpp>

namespace veldra {

/// What a library file says of itself: the one row of its table "Meta".
struct Meta {
  unsigned long long id = 0;  // always 0
  String guid;
  Unit unit = Unit::Millimetres;
  String locale;
  String region;
};

}  // namespace veldra

#endif
