// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects.hpp"
#include "text.hpp"
#include "values.hpp"

#include <pybind11/stl.h>

#include <optional>
#include <set>
#include <utility>

namespace veldra::python {

namespace {

using Handle = std::shared_ptr<LibraryHandle>;

/// Objects that a transaction may put back are watched until it ends.
void remember(LibraryHandle& self, const Addresses& objects) {
  if (self.transaction) self.touched.insert(objects.begin(), objects.end());
}

void require_no_orphan(const Reached& reached) {
  if (reached.orphan.empty()) return;
  raise("Closed", reached.orphan +
                      " belongs to a library that was closed, or was removed; "
                      "save a copy.deepcopy() of it");
}

py::object save(LibraryHandle& self, const py::object& object, const py::object& on_conflict) {
  return with_object(object, [&](const auto& saved) -> py::object {
    Reached reached = reached_from(*saved);
    require_no_orphan(reached);
    reached.libraries.push_back(&self);
    const Use use(reached.libraries, reached.objects);
    const OnConflict decides(self, on_conflict);
    remember(self, reached.objects);
    return py::cast(run(use, {self.file, object}, [&] { return self.library->save(saved); }));
  });
}

bool remove(LibraryHandle& self, const py::object& object) {
  return with_object(object, [&](const auto& removed) {
    const Addresses addresses{removed.get()};
    const Use use({&self}, addresses);
    remember(self, addresses);
    return run(use, {self.file, object}, [&] { return self.library->remove(removed); });
  });
}

bool remove_id(LibraryHandle& self, int kind, unsigned id) {
  const Use use({&self});
  const auto type = static_cast<ObjectType>(kind);
  return run(use, {self.file, key_object({type, id})}, [&] {
    return kit::with_class_of(
        type, [&](auto of) { return self.library->remove<typename decltype(of)::type>(id); });
  });
}

py::list removed_of(const std::map<ObjectKey, bool>& result) {
  py::list removed;
  for (const auto& [key, gone] : result) {
    if (gone) removed.append(key_object(key));
  }
  return removed;
}

py::list remove_all(LibraryHandle& self, const Keys& keys) {
  const Use use({&self});
  std::map<ObjectKey, bool> result;
  run(use, {self.file, {}}, [&] { self.library->remove(as_keys(keys), result); });
  return removed_of(result);
}

py::list purge(LibraryHandle& self, const std::vector<int>& kinds) {
  std::set<ObjectType> types;
  for (const int kind : kinds) types.insert(static_cast<ObjectType>(kind));
  const Use use({&self});
  std::map<ObjectKey, bool> result;
  run(use, {self.file, {}}, [&] { self.library->purge(types, result); });
  return removed_of(result);
}

/// Copies the objects with these keys, or all.
py::list copy(LibraryHandle& self, const Handle& source, const std::optional<Keys>& keys,
              const py::object& on_conflict) {
  const Use use({&self, source.get()});
  const OnConflict decides(self, on_conflict);
  IdMapping mapping(self.library.get());
  run(use, {self.file, {}}, [&] {
    if (!keys) return self.library->copyAll(source->library, mapping);
    self.library->copy(source->library, as_keys(*keys), mapping);
  });
  return entries_of(mapping);
}

}  // namespace

py::list entries_of(const IdMapping& mapping) {
  py::list result;
  for (const auto& [key, value] : mapping) {
    result.append(py::make_tuple(key_object(key.key), key_object({key.key.type, value.id}),
                                 static_cast<int>(value.status)));
  }
  return result;
}

void bind_changes(py::class_<LibraryHandle, std::shared_ptr<LibraryHandle>>& library) {
  library.def("_save", &save);
  library.def("_remove", &remove);
  library.def("_remove_id", &remove_id);
  library.def("_remove_all", &remove_all);
  library.def("_purge", &purge);
  library.def("_copy", &copy, py::arg("source").none(false), py::arg("keys"),
              py::arg("on_conflict"));
}

}  // namespace veldra::python
