// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects.hpp"
#include "text.hpp"
#include "values.hpp"

#include <veldra/kit/select.hpp>
#include <veldra/kit/text.hpp>

#include <pybind11/stl.h>

#include <algorithm>

namespace veldra::python {

namespace {

using Ids = std::vector<unsigned>;

/// Calls `find(class)` in the same way as `of_kind`, for work that makes an object, or nothing.
template <class Find>
py::object found(LibraryHandle& self, int kind, Find find) {
  return kit::with_class_of(static_cast<ObjectType>(kind), [&](auto of) -> py::object {
    const Use use({&self});
    auto object = run(use, {self.file, {}}, [&] { return find(of); });
    return object ? py::cast(std::move(object)) : py::none();
  });
}

py::object by_id(LibraryHandle& self, int kind, unsigned id) {
  return found(self, kind,
               [&](auto of) { return self.library->get<typename decltype(of)::type>(id); });
}

py::object by_name(LibraryHandle& self, int kind, const Text& name) {
  const String text = name.string();
  return found(self, kind,
               [&](auto of) { return self.library->get<typename decltype(of)::type>(text); });
}

/// The objects with these ids, in their order; those that have gone are left out.
py::list batch(LibraryHandle& self, int kind, const Ids& ids) {
  return kit::with_class_of(static_cast<ObjectType>(kind), [&](auto of) {
    using T = typename decltype(of)::type;
    std::vector<std::shared_ptr<T>> objects;
    const Use use({&self});
    run(use, {self.file, {}}, [&] {
      self.library->get(objects, std::set<unsigned>(ids.begin(), ids.end()));
      std::sort(objects.begin(), objects.end(),
                [](const auto& left, const auto& right) { return left->id() < right->id(); });
    });
    py::list result;
    for (auto& object : objects) result.append(py::cast(std::move(object)));
    return result;
  });
}

template <class T>
Ids selected(const Library& library, const std::string& filter) {
  const kit::Fields<T> fields(library);
  const kit::Filter<T> wanted(filter, fields);
  Ids result;
  library.for_each<T>([&](const std::shared_ptr<T>& object) {
    if (wanted(*object)) result.push_back(object->id());
    return true;
  });
  std::sort(result.begin(), result.end());
  return result;
}

Ids listed(const std::set<unsigned>& ids) { return Ids(ids.begin(), ids.end()); }

Ids ids(LibraryHandle& self, int kind) {
  return of_kind(self, kind,
                 [&](auto of) { return listed(self.library->ids<typename decltype(of)::type>()); });
}

Ids where(LibraryHandle& self, int kind, const Text& filter) {
  return of_kind(self, kind, [&](auto of) {
    return selected<typename decltype(of)::type>(*self.library, filter.utf8);
  });
}

Ids search(LibraryHandle& self, int kind, const Text& pattern) {
  return of_kind(self, kind, [&](auto of) {
    using T = typename decltype(of)::type;
    std::vector<std::shared_ptr<T>> objects;
    self.library->search(objects, pattern.string());
    Ids result;
    for (const auto& object : objects) result.push_back(object->id());
    std::sort(result.begin(), result.end());
    return result;
  });
}

py::dict names(LibraryHandle& self, int kind) {
  const auto all = of_kind(
      self, kind, [&](auto of) { return self.library->names<typename decltype(of)::type>(); });
  py::dict result;
  for (const auto& [id, name] : all) result[py::int_(id)] = name.utf8();
  return result;
}

Ids unreadable(LibraryHandle& self, int kind) {
  return of_kind(self, kind, [&](auto of) {
    return listed(self.library->unreadable<typename decltype(of)::type>());
  });
}

Ids unreferenced(LibraryHandle& self, int kind) {
  return of_kind(self, kind, [&](auto of) {
    return listed(self.library->unreferenced<typename decltype(of)::type>());
  });
}

unsigned long long count(LibraryHandle& self, int kind) {
  return of_kind(self, kind,
                 [&](auto of) { return self.library->count<typename decltype(of)::type>(); });
}

/// The names that are most like one that is not there.
std::vector<std::string> nearest(LibraryHandle& self, int kind, const Text& name) {
  return of_kind(self, kind, [&](auto of) {
    using T = typename decltype(of)::type;
    kit::Nearest names(name.utf8);
    for (const auto& each : self.library->names<T>()) names.offer(each.second.utf8());
    return names.names();
  });
}

bool has_field(LibraryHandle& self, int kind, const Text& name) {
  return of_kind(self, kind, [&](auto of) {
    return kit::Fields<typename decltype(of)::type>(*self.library).find(name.utf8) != nullptr;
  });
}

py::list referrers(LibraryHandle& self, int kind, unsigned id) {
  const Use use({&self});
  const auto keys = run(use, {self.file, {}}, [&] {
    return self.library->referrers({static_cast<ObjectType>(kind), id});
  });
  py::list result;
  for (const auto& key : keys) result.append(key_object(key));
  return result;
}

}  // namespace

void bind_queries(py::class_<LibraryHandle, std::shared_ptr<LibraryHandle>>& library) {
  library.def("_by_id", &by_id);
  library.def("_by_name", &by_name);
  library.def("_batch", &batch);
  library.def("_ids", &ids);
  library.def("_where", &where);
  library.def("_search", &search);
  library.def("_names", &names);
  library.def("_unreadable", &unreadable);
  library.def("_unreferenced", &unreferenced);
  library.def("_count", &count);
  library.def("_nearest", &nearest);
  library.def("_has_field", &has_field);
  library.def("_referrers", &referrers);
}

}  // namespace veldra::python
