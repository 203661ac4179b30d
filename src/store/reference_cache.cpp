// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/reference_cache.hpp"

#include <cassert>

namespace veldra {

void ReferenceCache::use(ReplicaCache& cache) noexcept {
  assert(!is_used());
  replicas_ = &cache;
}

void ReferenceCache::use(SharingCache& cache) noexcept {
  assert(!is_used());
  shared_ = &cache;
}

void ReferenceCache::stop() noexcept {
  assert(is_used());
  replicas_ = nullptr;
  shared_ = nullptr;
}

}  // namespace veldra
