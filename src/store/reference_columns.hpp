// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_REFERENCE_COLUMNS_HPP
#define VELDRA_STORE_REFERENCE_COLUMNS_HPP

#include <veldra/values.hpp>

#include <string>
#include <vector>

namespace veldra {

/// A column by which objects of a kind refer to those of another one.
struct ReferenceColumn {
  ObjectType from;
  std::string owners;  ///< the table of the objects that refer
  std::string table;   ///< the table of the column: that one, or a list of theirs
  std::string key;     ///< the column with the id of the object that refers
  std::string column;
  ObjectType to;
};

/// All of a library of the current version, as its foreign keys say.
const std::vector<ReferenceColumn>& reference_columns();

}  // namespace veldra

#endif
