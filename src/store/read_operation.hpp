// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_READ_OPERATION_HPP
#define VELDRA_STORE_READ_OPERATION_HPP

#include "store/running_operation.hpp"
#include "store/transactions.hpp"

#include <set>
#include <vector>

namespace veldra {

/// Runs `read` as an operation that can be interrupted, in a transaction.
template <class Read>
auto reading(Database& database, Read read) {
  return interruptibly(database, [&] {
    ReadTransaction transaction(database);
    return read();
  });
}

inline std::set<unsigned> as_set(const std::vector<unsigned>& ids) {
  return {ids.begin(), ids.end()};
}

}  // namespace veldra

#endif
