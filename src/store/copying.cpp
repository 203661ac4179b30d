// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/copy_saving.hpp"
#include "store/kinds.hpp"
#include "store/queries.hpp"
#include "store/reported_operation.hpp"
#include "store/saver.hpp"

#include <algorithm>

// The copying operations of a library.

namespace veldra {

namespace {

/// How many objects are fetched before they are saved. They bound the memory of a copy, and the
/// time for which the source is locked.
const std::size_t batch_size = 256;

/// Copies objects of one library into another, in one transaction of the latter.
class CopyOperation {
 public:
  CopyOperation(Library& destination, const Library& source, IdMapping& mapping)
      : source_(source), mapping_(mapping), saver_(destination, mapping) {}

  /// Copies the objects of a kind whose ids `find_ids` gives.
  template <class T, class FindIds>
  void copy(FindIds find_ids) {
    Database& database = LibraryAccess::database(source_);
    std::vector<unsigned> ids;
    {
      ReadTransaction transaction(database);
      ids = find_ids(database);
    }
    for (auto begin = ids.begin(); begin != ids.end();) {
      for (const auto& object : next_batch<T>(begin, ids.end())) saver_.save(object);
    }
  }

  void commit() { saver_.commit(); }

 private:
  /// Fetches the next objects that were not copied before, and moves on behind them.
  template <class T>
  std::vector<std::shared_ptr<T>> next_batch(std::vector<unsigned>::iterator& begin,
                                             std::vector<unsigned>::iterator end) const {
    std::vector<unsigned> ids;
    for (; begin != end && ids.size() != batch_size; ++begin) {
      if (!mapping_.has({{ObjectTraits<T>::type, *begin}, &source_})) ids.push_back(*begin);
    }
    Database& database = LibraryAccess::database(source_);
    ReadTransaction transaction(database);
    SharingCache met(ObjectTraits<T>::type, source_, mapping_);
    return load_all<T>(source_, ids, met);
  }

  const Library& source_;
  IdMapping& mapping_;
  Saver<CopySaving> saver_;
};

/// Runs `work` with a copy operation and tells the reactor about it, which may let the source go.
template <class Work>
void copying(Library& destination, std::shared_ptr<const Library> source, IdMapping& mapping,
             Work work) {
  if (source == nullptr || source.get() == &destination) return;
  interruptibly(LibraryAccess::database(*source), [&] {
    run_operation(destination, [&] {
      CopyOperation operation(destination, *source, mapping);
      work(operation);
      operation.commit();
    });
  });
}

}  // namespace

template <class T>
void Library::copy(const std::shared_ptr<const Library>& source, const std::set<unsigned>& ids,
                   IdMapping& mapping) {
  copying(*this, source, mapping, [&ids](CopyOperation& operation) {
    // The ids are taken before anything is saved, so that the reactor may change the host's.
    operation.copy<T>([&ids](Database& database) { return existing_ids<T>(database, ids); });
  });
}

template <class T>
void Library::copy(const std::shared_ptr<const Library>& source, const std::set<unsigned>& ids) {
  IdMapping mapping(this);
  copy<T>(source, ids, mapping);
}

void Library::copy(const std::shared_ptr<const Library>& source, const std::set<ObjectKey>& keys,
                   IdMapping& mapping) {
  if (source.get() == this) {
    for (const ObjectKey& key : keys) mapping.assign({key, this}, {key.id, IdMapping::Existing});
    return;
  }
  // The reactor may change those of the host.
  const auto wanted = keys;
  copying(*this, source, mapping, [&wanted](CopyOperation& operation) {
    for_each_kind([&](auto kind) {
      using T = typename decltype(kind)::type;
      const auto ids = ids_of_kind(wanted, ObjectTraits<T>::type);
      operation.copy<T>([&ids](Database& database) { return existing_ids<T>(database, ids); });
    });
  });
}

void Library::copy(const std::shared_ptr<const Library>& source, const std::set<ObjectKey>& keys) {
  IdMapping mapping(this);
  copy(source, keys, mapping);
}

void Library::copyAll(const std::shared_ptr<const Library>& source, IdMapping& mapping) {
  copying(*this, source, mapping, [](CopyOperation& operation) {
    for_each_kind([&operation](auto kind) {
      using T = typename decltype(kind)::type;
      operation.copy<T>([](Database& database) { return all_ids<T>(database); });
    });
  });
}

void Library::copyAll(const std::shared_ptr<const Library>& source) {
  IdMapping mapping(this);
  copyAll(source, mapping);
}

#define VELDRA_INSTANTIATE(T)                                                          \
  template VELDRA_EXPORT void Library::copy<T>(const std::shared_ptr<const Library>&,  \
                                               const std::set<unsigned>&, IdMapping&); \
  template VELDRA_EXPORT void Library::copy<T>(const std::shared_ptr<const Library>&,  \
                                               const std::set<unsigned>&);

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
