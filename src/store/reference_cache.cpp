#include "store/reference_cache.hpp"

#include <cassert>

namespace veldra {

CacheScope::CacheScope(ReferenceCache& references, ReplicaCache& cache) : references_(references) {
  assert(!references.is_used());
  references.replicas_ = &cache;
}

CacheScope::CacheScope(ReferenceCache& references, SharingCache& cache) : references_(references) {
  assert(!references.is_used());
  references.shared_ = &cache;
}

CacheScope::~CacheScope() {
  references_.replicas_ = nullptr;
  references_.shared_ = nullptr;
}

}  // namespace veldra
