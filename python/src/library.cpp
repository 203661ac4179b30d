// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects.hpp"
#include "text.hpp"
#include "values.hpp"

#include <veldra/library.hpp>
#include <veldra/version.hpp>

#include <pybind11/stl.h>

#include <utility>

namespace veldra::python {

namespace {

using Handle = std::shared_ptr<LibraryHandle>;

Unit unit_named(const std::string& name) {
  if (name == "mm") return Unit::Millimetres;
  if (name == "in") return Unit::Inches;
  throw py::value_error("'" + name + "' is none of the units 'mm' and 'in'");
}

/// Opens a library by `open`, which gives a shared pointer.
template <class Open>
Handle opened(const FileName& file, Open open) {
  const Use nothing({});
  auto library = run_opening(nothing, {file.utf8, {}}, open);
  return std::make_shared<LibraryHandle>(std::move(library), file.utf8);
}

Handle open_existing(const FileName& file, bool read_only) {
  return opened(file, [&] { return Library::openExisting(file.string(), read_only); });
}

Handle create(const FileName& file, const std::string& unit, const Text& guid) {
  const Unit made_in = unit_named(unit);
  return opened(file, [&] { return Library::create(file.string(), made_in, guid.string()); });
}

py::tuple recognise(const FileName& file) {
  const Use nothing({});
  const auto found =
      run_opening(nothing, {file.utf8, {}}, [&] { return Library::recognise(file.string()); });
  return py::make_tuple(static_cast<int>(found.kind), found.version);
}

/// What a library says of itself without its file.
template <class Get>
auto asked(Get get) {
  return [get](LibraryHandle& self) {
    const Use use({&self});
    return get(*self.library);
  };
}

template <class Set>
auto told(Set set) {
  return [set](LibraryHandle& self, const Text& text) {
    const Use use({&self});
    run(use, {self.file, {}}, [&] { set(*self.library, text.string()); });
  };
}

void require_unbound(const LibraryHandle& self) {
  if (!self.is_bound()) return;
  raise("TransactionError", "a transaction or snapshot is open already", {self.file, {}});
}

/// A reactor cannot end what it is called in.
void require_no_call(LibraryHandle& self) {
  { const Use unless_by_another_thread({&self}); }
  if (!is_in_use(self)) return;
  raise("TransactionError", "a call on the library is running", {self.file, {}});
}

void close(LibraryHandle& self) {
  if (!self.library) return;
  require_no_call(self);
  require_unbound(self);
  self.forget();
  auto closing = std::exchange(self.library, nullptr);
  const py::gil_scoped_release released;
  closing.reset();
}

void begin_transaction(LibraryHandle& self) {
  const Use use({&self});
  require_unbound(self);
  run(use, {self.file, {}},
      [&] { self.transaction = std::make_unique<Library::Transaction>(*self.library); });
  self.bound_to = std::this_thread::get_id();
}

/// Ends the transaction by `end`, and in any case.
template <class End>
void end_transaction(LibraryHandle& self, End end) {
  require_no_call(self);
  const Use use({&self}, self.touched);
  if (!self.transaction) raise("TransactionError", "no transaction is open", {self.file, {}});
  auto transaction = std::move(self.transaction);
  self.touched.clear();
  self.bound_to = {};
  run(use, {self.file, {}}, [&] {
    const auto ended = std::move(transaction);
    end(*ended);
  });
}

void begin_snapshot(LibraryHandle& self) {
  const Use use({&self});
  require_unbound(self);
  run(use, {self.file, {}},
      [&] { self.snapshot = std::make_unique<Library::Snapshot>(*self.library); });
  self.bound_to = std::this_thread::get_id();
}

void end_snapshot(LibraryHandle& self) {
  const Use use({&self});
  if (!self.snapshot) raise("TransactionError", "no snapshot is open", {self.file, {}});
  auto snapshot = std::move(self.snapshot);
  self.bound_to = {};
  run(use, {self.file, {}}, [&] { snapshot.reset(); });
}

py::list check(LibraryHandle& self) {
  const Use use({&self});
  std::vector<Library::Finding> findings;
  run(use, {self.file, {}}, [&] { self.library->check(findings); });
  py::list result;
  for (const auto& finding : findings) {
    const bool is_object = finding.object.type != ObjectType{};
    result.append(py::make_tuple(is_object ? key_object(finding.object) : py::none(),
                                 as_python(finding.name.utf8()),
                                 as_python(finding.sentence.utf8())));
  }
  return result;
}

void backup(LibraryHandle& self, const FileName& file) {
  const Use use({&self});
  run_opening(use, {self.file, {}}, [&] { self.library->backup(file.string()); });
}

void restore_from(LibraryHandle& self, const FileName& file, bool other_library) {
  const Use use({&self});
  run_opening(use, {self.file, {}},
              [&] { self.library->restoreFrom(file.string(), other_library); });
}

void bind_transactions(py::class_<LibraryHandle, Handle>& library) {
  library.def("_begin_transaction", &begin_transaction);
  library.def("_commit", [](LibraryHandle& self) {
    end_transaction(self, [](Library::Transaction& transaction) { transaction.commit(); });
  });
  library.def("_roll_back",
              [](LibraryHandle& self) { end_transaction(self, [](Library::Transaction&) {}); });
  library.def("_begin_snapshot", &begin_snapshot);
  library.def("_end_snapshot", &end_snapshot);
}

}  // namespace

void bind_library(py::module_& module) {
  module.def("_open", &open_existing, py::arg("path"), py::arg("read_only"));
  module.def("_create", &create, py::arg("path"), py::arg("unit"), py::arg("guid"));
  module.def("_recognise", &recognise, py::arg("path"));

  py::class_<LibraryHandle, Handle> library(module, "_Library");
  // The class of the package is derived from this one, and takes over what was opened.
  library.def(py::init([](const Handle& opened) { return opened; }));
  refuse_pickling(library, "a veldra.Library cannot be pickled: pickle the name of its file");
  library.def_readonly("file", &LibraryHandle::file,
                       "The name of the file, as it was given; that of the first file for what "
                       "veldra.read gives.");
  library.def_property_readonly(
      "closed", [](const LibraryHandle& self) { return !self.library; },
      "Whether the library is closed.");
  library.def_property_readonly("guid", asked([](const Library& it) { return it.guid().utf8(); }),
                                "The identity of the library, which copies of the file share: 36 "
                                "characters, hexadecimal with hyphens. Raises Closed.");
  library.def_property_readonly("_unit",
                                asked([](const Library& it) { return kit::name_of(it.unit()); }));
  library.def_property_readonly("version", asked([](const Library& it) { return it.version(); }),
                                "The version of the schema of the file. Raises Closed.");
  library.def_property_readonly("read_only", asked([](const Library& it) { return it.readOnly(); }),
                                "Whether the library was opened for reading. Raises Closed.");
  library.def_property("locale", asked([](const Library& it) { return it.locale().utf8(); }),
                       told([](Library& it, const String& text) { it.locale(text); }),
                       "The locale of its texts, such as \"de_CH\". It is written at once. Raises "
                       "Closed, and Busy and ReadOnly when it is set.");
  library.def_property(
      "region", asked([](const Library& it) { return it.region().utf8(); }),
      told([](Library& it, const String& text) { it.region(text); }),
      "The region for which it is meant. It is written at once. Raises Closed, and "
      "Busy and ReadOnly when it is set.");
  library.def_property(
      "_reactor", [](const LibraryHandle& self) { return self.hub->installed(); },
      [](LibraryHandle& self, py::object reactor) { self.hub->install(std::move(reactor)); });
  library.def(
      "close", &close,
      "Closes the library; nothing happens if it is closed. Its objects live on, and belong "
      "to none then.\n\nRaises TransactionError within a transaction, a snapshot or a call "
      "on it, and ThreadError.");
  library.def(
      "interrupt",
      [](LibraryHandle& self) {
        if (self.library) self.library->interrupt();
      },
      "Ends what another thread does with the library, which raises Interrupted there. It may be "
      "called from any thread, and does nothing to a library that does nothing.");
  library.def("check", &check);
  library.def(
      "backup", &backup, py::arg("path"),
      "Copies the library, in the state of one moment, to a new file.\n\nRaises FileExists, "
      "TransactionError within a transaction, CannotOpen and Full; no new file is left then.");
  library.def(
      "restore_from", &restore_from, py::arg("path"), py::arg("other_library") = false,
      "Replaces all contents by those of a backup, or of any library with the same GUID, in "
      "full or not at all. With other_library it may have another GUID, which the library "
      "has then. Objects in memory stay as they are: read them anew.\n\nRaises FileMissing, "
      "CannotOpen, NotALibrary, UnknownVersion, OtherLibrary, SameFile, Damaged, ReadOnly, "
      "and TransactionError within a transaction or a snapshot.");
  bind_transactions(library);
  bind_queries(library);
  bind_columns(library);
  bind_changes(library);
  bind_exchange(module, library);
}

}  // namespace veldra::python
