// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_VIEWS_HPP
#define VELDRA_STORE_VIEWS_HPP

#include <odb/core.hxx>

#include <string>

namespace veldra {

/// What is asked of the tables besides whole objects: ids and counts, by a statement that is given
/// when it is run. As wide as the file can hold them.
#pragma db view query()
struct QueriedNumber {
  unsigned long long value = 0;
};

/// What an object is called, asked for in the same way.
#pragma db view query()
struct QueriedName {
  unsigned long long id = 0;
  std::string name;
};

}  // namespace veldra

#endif
