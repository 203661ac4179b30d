// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_PYTHON_REACTOR_HPP
#define VELDRA_PYTHON_REACTOR_HPP

#include <veldra/library.hpp>

#include <pybind11/pybind11.h>

#include <string>

namespace veldra::python {

namespace py = pybind11;

struct LibraryHandle;

/// The reactor of every library that Python opens. It asks and tells the object of Python that the
/// host has installed, if any.
///
/// Exceptions of Python pass through the library as they are.
class Hub : public Library::Reactor {
 public:
  explicit Hub(LibraryHandle& library) : library_(library) {}

  /// Installs a reactor of Python; None for none.
  void install(py::object reactor) { reactor_ = std::move(reactor); }

  /// The reactor of Python; None for none.
  const py::object& installed() const noexcept { return reactor_; }

  /// Tells and asks nobody any more, and keeps nobody alive.
  void fall_silent() {
    silent_ = true;
    reactor_ = py::none();
  }

  int resolveNameConflict(Library& library, ObjectType type, String& name) override;
  void objectSaved(Library& library, const ObjectKey& key) override;
  int mayRemove(Library& library, const ObjectKey& key) override;
  void objectRemoved(Library& library, const ObjectKey& key) override;
  void libraryChanged(Library& library) override;
  void typeChanged(Library& library, ObjectType type) override;

 private:
  friend class OnConflict;

  bool tells() const noexcept { return !silent_ && !reactor_.is_none(); }
  py::object answer_to_clash(ObjectType type, const String& name) const;
  void tell(const char* function, const ObjectKey& key) const;

  LibraryHandle& library_;
  py::object reactor_ = py::none();
  py::object on_conflict_ = py::none();
  bool silent_ = false;
};

/// As long as it lives, clashes of names are decided by one of the ready-made policies, or by a
/// function; None leaves them to the reactor.
class OnConflict {
 public:
  OnConflict(LibraryHandle& library, py::object policy);
  OnConflict(const OnConflict&) = delete;
  OnConflict& operator=(const OnConflict&) = delete;
  ~OnConflict();

 private:
  Hub& hub_;
  py::object before_;
};

/// The kind and the key of `veldra._enums`.
py::object kind_object(ObjectType type);
py::object key_object(const ObjectKey& key);

}  // namespace veldra::python

#endif
