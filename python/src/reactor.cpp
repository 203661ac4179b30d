// SPDX-License-Identifier: GPL-2.0-or-later
#include "reactor.hpp"

#include "text.hpp"
#include "use.hpp"

#include <veldra/kit/kinds.hpp>

#include <utility>

namespace veldra::python {

namespace {

bool is_taken(const Library& library, ObjectType type, const String& name) {
  return kit::with_class_of(
      type, [&](auto of) { return library.get<typename decltype(of)::type>(name) != nullptr; });
}

/// The first of "Brick (2)", "Brick (3)", ... that is free.
String free_name(const Library& library, ObjectType type, const String& name) {
  for (unsigned number = 2;; ++number) {
    const String result((name.utf8() + " (" + std::to_string(number) + ")").c_str());
    if (!is_taken(library, type, result)) return result;
  }
}

py::object as_python(LibraryHandle& library) {
  return py::cast(&library, py::return_value_policy::reference);
}

/// A decision of the core; 0 for that of its default, which is an error.
int decision_of(const std::string& policy) {
  if (policy == "use") return Library::Reactor::UseExisting;
  if (policy == "overwrite") return Library::Reactor::Overwrite;
  if (policy == "rename") return Library::Reactor::Rename;
  if (policy == "fail") return 0;
  throw py::value_error("'" + policy + "' is none of 'fail', 'use', 'overwrite' and 'rename'");
}

bool is_text(const py::object& object) { return PyUnicode_Check(object.ptr()); }

}  // namespace

py::object kind_object(ObjectType type) {
  return py::module_::import("veldra._enums").attr("Kind")(static_cast<int>(type));
}

py::object key_object(const ObjectKey& key) {
  return py::module_::import("veldra._enums").attr("Key")(kind_object(key.type), key.id);
}

py::object Hub::answer_to_clash(ObjectType type, const String& name) const {
  if (is_text(on_conflict_)) return on_conflict_;
  const py::object function =
      on_conflict_.is_none() ? py::object(reactor_.attr("resolve_name_conflict")) : on_conflict_;
  return function(as_python(library_), kind_object(type), name.utf8());
}

int Hub::resolveNameConflict(Library& library, ObjectType type, String& name) {
  if (silent_ || (reactor_.is_none() && on_conflict_.is_none())) {
    return Reactor::resolveNameConflict(library, type, name);
  }
  String wanted;
  int decision = Rename;
  {
    const py::gil_scoped_acquire acquired;
    const py::object answer = answer_to_clash(type, name);
    if (is_text(answer)) {
      decision = decision_of(text_of(answer).utf8);
    } else if (py::hasattr(answer, "name")) {
      wanted = text_of(answer.attr("name")).string();
    } else {
      throw py::type_error("a clash of names is decided by a str or a veldra.Rename, not by " +
                           std::string(py::repr(answer)));
    }
  }
  if (decision == 0) return Reactor::resolveNameConflict(library, type, name);
  if (decision != Rename) return decision;
  // The library would ask again and again about a name that stays the same.
  if (wanted == name) return Reactor::resolveNameConflict(library, type, name);
  name = wanted.empty() ? free_name(library, type, name) : wanted;
  return decision;
}

void Hub::tell(const char* function, const ObjectKey& key) const {
  if (!tells()) return;
  const py::gil_scoped_acquire acquired;
  reactor_.attr(function)(as_python(library_), key_object(key));
}

void Hub::objectSaved(Library&, const ObjectKey& key) { tell("object_saved", key); }

int Hub::mayRemove(Library&, const ObjectKey& key) {
  if (!tells()) return 0;
  const py::gil_scoped_acquire acquired;
  const py::object answer = reactor_.attr("may_remove")(as_python(library_), key_object(key));
  return answer.cast<bool>() ? 0 : 1;
}

void Hub::objectRemoved(Library&, const ObjectKey& key) { tell("object_removed", key); }

void Hub::libraryChanged(Library&) {
  if (!tells()) return;
  const py::gil_scoped_acquire acquired;
  reactor_.attr("library_changed")(as_python(library_));
}

void Hub::typeChanged(Library&, ObjectType type) {
  if (!tells()) return;
  const py::gil_scoped_acquire acquired;
  reactor_.attr("type_changed")(as_python(library_), kind_object(type));
}

OnConflict::OnConflict(LibraryHandle& library, py::object policy)
    : hub_(*library.hub), before_(hub_.on_conflict_) {
  if (policy.is_none()) return;
  if (is_text(policy)) {
    decision_of(text_of(policy).utf8);
  } else if (PyCallable_Check(policy.ptr()) == 0) {
    throw py::type_error("on_conflict is a str or a function, not " +
                         std::string(py::repr(policy)));
  }
  hub_.on_conflict_ = std::move(policy);
}

OnConflict::~OnConflict() { hub_.on_conflict_ = before_; }

}  // namespace veldra::python
