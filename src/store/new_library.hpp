// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_NEW_LIBRARY_HPP
#define VELDRA_STORE_NEW_LIBRARY_HPP

#include "store/database.hpp"

#include <veldra/string.hpp>
#include <veldra/values.hpp>

namespace veldra {

/// What a new library is made with.
struct NewLibrary {
  Unit unit = Unit::Millimetres;
  String guid;  ///< from which the GUID is made; empty for a random one
};

/// Puts into a new file what every library has: what it says of itself, and the default types.
void fill(Database& database, const NewLibrary& contents);

}  // namespace veldra

#endif
