// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_TRANSACTION_CALLS_HPP
#define VELDRA_TESTS_STORE_TRANSACTION_CALLS_HPP

#include <veldra/veldra.hpp>

namespace veldra_tests {

using Transaction = veldra::Library::Transaction;

/// Does it within a transaction that is committed.
template <class Call>
void commit(veldra::Library& library, const Call& call) {
  Transaction transaction(library);
  call();
  transaction.commit();
}

/// Does it within a transaction that is not.
template <class Call>
void roll_back(veldra::Library& library, const Call& call) {
  const Transaction transaction(library);
  call();
}

}  // namespace veldra_tests

#endif
