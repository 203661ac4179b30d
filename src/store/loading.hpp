// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_LOADING_HPP
#define VELDRA_STORE_LOADING_HPP

#include "store/database.hpp"

#include <veldra/library.hpp>

#include <memory>
#include <vector>

namespace veldra {

// From rows to objects, within a transaction.

/// Links an object, and all that was loaded with it, to the library that it was loaded from.
template <class T>
void link(T& object, const std::weak_ptr<Library>& library);

/// The object with that id; null when it, or something that it refers to, is not there.
template <class T>
std::shared_ptr<T> load(const Library& library, unsigned id);

/// The objects with those ids, in their order, without those that are not there. What several of
/// them refer to is fetched once and taken from the cache, a `ReplicaCache` or a `SharingCache`.
template <class T, class Cache>
std::vector<std::shared_ptr<T>> load_all(const Library& library, const std::vector<unsigned>& ids,
                                         Cache& cache);

}  // namespace veldra

#endif
