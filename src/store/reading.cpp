// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/kinds.hpp"
#include "store/library_impl.hpp"
#include "store/loading.hpp"
#include "store/object_cache.hpp"
#include "store/queries.hpp"
#include "store/read_operation.hpp"

#include <odb/exceptions.hxx>

#include <utf8.h>

#include <algorithm>
#include <iterator>

// The reading operations of a library.

namespace veldra {

namespace {

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

/// Whether an object that is there cannot be read.
template <class T>
bool is_unreadable(const Library& library, unsigned id) {
  try {
    return load<T>(library, id) == nullptr;
  } catch (const odb::no_type_info&) {
    return true;
  } catch (const utf8::exception&) {
    return true;
  }
}

/// The time in which the host is shown objects, one after another.
class Visit {
 public:
  explicit Visit(OpenTransactions& transactions) : transactions_(transactions) {
    transactions_.began_visit();
  }
  Visit(const Visit&) = delete;
  Visit& operator=(const Visit&) = delete;
  ~Visit() { transactions_.end_visit(); }

 private:
  OpenTransactions& transactions_;
};

/// How many objects are in memory at once.
constexpr std::ptrdiff_t shown_at_once = 64;

/// Shows the objects whose ids `find_ids` gives; returns whether `visit` wanted to see all of them.
template <class T, class FindIds, class See>
bool visit_each(const Library& library, FindIds find_ids, const See& see) {
  Database& database = LibraryAccess::database(library);
  const OneState state(database);
  const std::vector<unsigned> ids = reading(database, [&] { return find_ids(database); });
  for (auto begin = ids.begin(); begin != ids.end();) {
    const auto end = begin + std::min(ids.end() - begin, shown_at_once);
    const std::vector<unsigned> part(begin, end);
    begin = end;
    std::vector<std::shared_ptr<T>> objects;
    append(library, objects, [&part](Database&) { return part; });
    const Visit visit(database.transactions());
    for (auto& object : objects) {
      database.stop_if_interrupted();
      const auto shown = std::move(object);
      if (!see(shown)) return false;
    }
  }
  return true;
}

/// The same as one operation, during which the library stays open, whatever `see` lets go.
template <class T, class FindIds, class See>
bool run_visit(const Library& library, FindIds find_ids, const See& see) {
  const auto keep = LibraryAccess::impl(library).self.lock();
  return interruptibly(LibraryAccess::database(library),
                       [&] { return visit_each<T>(library, find_ids, see); });
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

template <class T>
std::set<unsigned> Library::ids() const {
  return reading(*impl_->database, [&] { return as_set(all_ids<T>(*impl_->database)); });
}

template <class T>
std::set<unsigned> Library::ids(const typename CriteriaOf<T>::type& criteria) const {
  return reading(*impl_->database,
                 [&] { return as_set(selected_ids<T>(*impl_->database, criteria)); });
}

template <class T>
std::map<unsigned, String> Library::names() const {
  return reading(*impl_->database, [&] { return all_names<T>(*impl_->database); });
}

template <class T>
std::set<unsigned> Library::unreadable() const {
  return reading(*impl_->database, [&] {
    std::set<unsigned> found;
    for (const unsigned id : all_ids<T>(*impl_->database)) {
      impl_->database->stop_if_interrupted();
      if (is_unreadable<T>(*this, id)) found.insert(id);
    }
    return found;
  });
}

template <class T>
bool Library::for_each(const std::function<bool(const std::shared_ptr<T>&)>& visit) const {
  return for_each<T>({}, visit);
}

template <class T>
bool Library::for_each(const typename CriteriaOf<T>::type& criteria,
                       const std::function<bool(const std::shared_ptr<T>&)>& visit) const {
  return run_visit<T>(
      *this, [&criteria](Database& database) { return selected_ids<T>(database, criteria); },
      visit);
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
  template VELDRA_EXPORT unsigned long long Library::count<T>(const CriteriaOf<T>::type&) const;  \
  template VELDRA_EXPORT std::set<unsigned> Library::ids<T>() const;                              \
  template VELDRA_EXPORT std::set<unsigned> Library::ids<T>(const CriteriaOf<T>::type&) const;    \
  template VELDRA_EXPORT std::map<unsigned, String> Library::names<T>() const;                    \
  template VELDRA_EXPORT std::set<unsigned> Library::unreadable<T>() const;                       \
  template VELDRA_EXPORT bool Library::for_each<T>(                                               \
      const std::function<bool(const std::shared_ptr<T>&)>&) const;                               \
  template VELDRA_EXPORT bool Library::for_each<T>(                                               \
      const CriteriaOf<T>::type&, const std::function<bool(const std::shared_ptr<T>&)>&) const;

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
