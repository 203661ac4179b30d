// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_REFERENCE_CACHE_HPP
#define VELDRA_STORE_REFERENCE_CACHE_HPP

#include "store/object_cache.hpp"

namespace veldra {

/// What generated code asks before it loads an object that another one refers to: one of the two
/// caches while a list is read, or nobody.
class ReferenceCache {
 public:
  ReferenceCache() = default;
  ReferenceCache(const ReferenceCache&) = delete;
  ReferenceCache& operator=(const ReferenceCache&) = delete;

  /// The object with that id; null when it must be loaded.
  template <class T>
  std::shared_ptr<T> find(unsigned id) {
    if (replicas_ != nullptr) return replicas_->find<T>(id);
    return shared_ == nullptr ? nullptr : shared_->find<T>(id);
  }

  template <class T>
  void insert(const std::shared_ptr<T>& object) {
    if (replicas_ != nullptr) replicas_->insert(object);
    if (shared_ != nullptr) shared_->insert(object);
  }

  bool is_used() const noexcept { return replicas_ != nullptr || shared_ != nullptr; }

 private:
  friend class CacheScope;

  void use(ReplicaCache& cache) noexcept;
  void use(SharingCache& cache) noexcept;
  void stop() noexcept;

  ReplicaCache* replicas_ = nullptr;
  SharingCache* shared_ = nullptr;
};

/// Lets what is read use a cache, for as long as it lives. Lists are not read within one another.
class CacheScope {
 public:
  template <class Cache>
  CacheScope(ReferenceCache& references, Cache& cache) : references_(references) {
    references.use(cache);
  }
  CacheScope(const CacheScope&) = delete;
  CacheScope& operator=(const CacheScope&) = delete;
  ~CacheScope() { references_.stop(); }

 private:
  ReferenceCache& references_;
};

}  // namespace veldra

#endif
