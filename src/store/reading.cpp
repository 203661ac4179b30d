// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/kinds.hpp"
#include "store/library_impl.hpp"
#include "store/loading.hpp"
#include "store/object_cache.hpp"
#include "store/queries.hpp"
#include "store/running_operation.hpp"
#include "store/transactions.hpp"

#include <iterator>

// The reading operations of a library.

namespace veldra {

namespace {

/// Runs `read` in a transaction.
template <class Read>
auto reading(Database& database, Read read) {
  return interruptibly(database, [&] {
    ReadTransaction transaction(database);
    return read();
  });
}

/// Appends the objects whose ids `find_ids` gives, all read in one transaction.
template <class T, class FindIds>
void append(const Library& library, std::vector<std::shared_ptr<T>>& out, FindIds find_ids) {
  Database& database = LibraryAccess::database(library);
  reading(database, [&] {
    ReplicaCache met(ObjectTraits<T>::type);
    auto objects = load_all<T>(library, find_ids(database), met);
    out.insert(out.end(), std::make_move_iterator(objects.begin()),
               std::make_move_iterator(objects.end()));
  });
}

}  // namespace

template <class T>
std::shared_ptr<T> Library::get(unsigned id) const {
  if (id == 0) return nullptr;
  return reading(*impl_->database, [&] { return load<T>(*this, id); });
}

template <class T>
std::shared_ptr<T> Library::get(const String& name) const {
  if (name.empty()) return nullptr;
  return reading(*impl_->database, [&]() -> std::shared_ptr<T> {
    const unsigned id = id_of_name<T>(*impl_->database, name);
    return id == 0 ? nullptr : load<T>(*this, id);
  });
}

template <class T>
void Library::get(std::vector<std::shared_ptr<T>>& out, const std::set<unsigned>& ids) const {
  append(*this, out, [&ids](Database& database) { return existing_ids<T>(database, ids); });
}

template <class T>
void Library::get(std::vector<std::shared_ptr<T>>& out) const {
  append(*this, out, [](Database& database) { return all_ids<T>(database); });
}

template <class T>
void Library::get(std::vector<std::shared_ptr<T>>& out,
                  const typename CriteriaOf<T>::type& criteria) const {
  append(*this, out,
         [&criteria](Database& database) { return selected_ids<T>(database, criteria); });
}

template <class T>
void Library::search(std::vector<std::shared_ptr<T>>& out, const String& text) const {
  search<T>(out, text, {});
}

template <class T>
void Library::search(std::vector<std::shared_ptr<T>>& out, const String& text,
                     const typename CriteriaOf<T>::type& criteria) const {
  if (text.empty()) return;
  append(*this, out, [&text, &criteria](Database& database) {
    return matching_ids<T>(database, text, criteria);
  });
}

template <class T>
unsigned long long Library::count() const {
  return reading(*impl_->database, [&] { return count_all<T>(*impl_->database); });
}

template <class T>
unsigned long long Library::count(const typename CriteriaOf<T>::type& criteria) const {
  return reading(*impl_->database, [&] { return count_selected<T>(*impl_->database, criteria); });
}

#define VELDRA_INSTANTIATE(T)                                                                     \
  template VELDRA_EXPORT std::shared_ptr<T> Library::get<T>(unsigned) const;                      \
  template VELDRA_EXPORT std::shared_ptr<T> Library::get<T>(const String&) const;                 \
  template VELDRA_EXPORT void Library::get<T>(std::vector<std::shared_ptr<T>>&,                   \
                                              const std::set<unsigned>&) const;                   \
  template VELDRA_EXPORT void Library::get<T>(std::vector<std::shared_ptr<T>>&) const;            \
  template VELDRA_EXPORT void Library::get<T>(std::vector<std::shared_ptr<T>>&,                   \
                                              const CriteriaOf<T>::type&) const;                  \
  template VELDRA_EXPORT void Library::search<T>(std::vector<std::shared_ptr<T>>&, const String&) \
      const;                                                                                      \
  template VELDRA_EXPORT void Library::search<T>(std::vector<std::shared_ptr<T>>&, const String&, \
                                                 const CriteriaOf<T>::type&) const;               \
  template VELDRA_EXPORT unsigned long long Library::count<T>() const;                            \
  template VELDRA_EXPORT unsigned long long Library::count<T>(const CriteriaOf<T>::type&) const;

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
