// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_PYTHON_OBJECTS_HPP
#define VELDRA_PYTHON_OBJECTS_HPP

#include "use.hpp"

#include <veldra/kit/kinds.hpp>

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace veldra::python {

/// Keys of objects as the functions of Python hand them over: kinds and ids.
using Keys = std::vector<std::pair<int, unsigned>>;

inline std::set<ObjectKey> as_keys(const Keys& keys) {
  std::set<ObjectKey> result;
  for (const auto& [kind, id] : keys) result.emplace(static_cast<ObjectType>(kind), id);
  return result;
}

/// What saving an object can touch.
struct Reached {
  Addresses objects;                      ///< it, and all to which it refers
  std::vector<LibraryHandle*> libraries;  ///< those that they belong to
  std::string orphan;                     ///< one whose library was closed; empty for none
};

template <class T>
Reached reached_from(const T& object);

extern template Reached reached_from(const Material&);
extern template Reached reached_from(const Composition&);
extern template Reached reached_from(const MaterialType&);
extern template Reached reached_from(const Layer&);
extern template Reached reached_from(const CustomProperty&);
extern template Reached reached_from(const Tag&);

/// Calls `work` with the object of Python as one of the six classes.
///
/// Throws `TypeError`: it is none.
template <class Work>
auto with_object(const py::handle& object, Work work) {
  for (const ObjectType type : kit::all_kinds()) {
    const bool is_it = kit::with_class_of(
        type, [&](auto of) { return py::isinstance<typename decltype(of)::type>(object); });
    if (!is_it) continue;
    return kit::with_class_of(type, [&](auto of) {
      return work(object.template cast<typename decltype(of)::type&>().shared_from_this());
    });
  }
  throw py::type_error("an object of a library is needed, such as a veldra.Material, not " +
                       std::string(py::repr(object)));
}

/// Calls `work(class)` for a kind, on a library in use, without the interpreter's lock.
template <class Work>
auto of_kind(LibraryHandle& self, int kind, Work work) {
  const Use use({&self});
  return run(use, {self.file, {}},
             [&] { return kit::with_class_of(static_cast<ObjectType>(kind), work); });
}

/// An object whose handle is only lent to those who read. It was made without `const`, as all are.
template <class T>
std::shared_ptr<T> lent(const std::shared_ptr<const T>& object) {
  return std::const_pointer_cast<T>(object);
}

/// The unit of its lengths.
Unit unit_of(const Composition& composition);

/// For each entry the key in the source, the key in the destination, and the number of the status.
py::list entries_of(const IdMapping& mapping);

/// Refuses pickling with a sentence. Both functions are needed: what Python does by itself for a
/// class of an extension does not come back.
template <class Class>
void refuse_pickling(Class& made, const std::string& sentence) {
  made.def("__reduce__",
           [sentence](const py::object&) -> py::object { throw py::type_error(sentence); });
  made.def("__reduce_ex__", [sentence](const py::object&, const py::object&) -> py::object {
    throw py::type_error(sentence);
  });
}

void bind_objects(py::module_& module);
void bind_fields(py::module_& module);
void bind_library(py::module_& module);
void bind_queries(py::class_<LibraryHandle, std::shared_ptr<LibraryHandle>>& library);
void bind_columns(py::class_<LibraryHandle, std::shared_ptr<LibraryHandle>>& library);
void bind_changes(py::class_<LibraryHandle, std::shared_ptr<LibraryHandle>>& library);
void bind_exchange(py::module_& module,
                   py::class_<LibraryHandle, std::shared_ptr<LibraryHandle>>& library);
void bind_drawing(py::module_& module);
void bind_kit(py::module_& module);

}  // namespace veldra::python

#endif
