// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_PYTHON_USE_HPP
#define VELDRA_PYTHON_USE_HPP

#include "casters.hpp"
#include "errors.hpp"
#include "reactor.hpp"

#include <veldra/library.hpp>

#include <csignal>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

namespace veldra::python {

/// An open library as Python has it. What changes here changes while the interpreter's lock is
/// held.
struct LibraryHandle {
  LibraryHandle(std::shared_ptr<Library> opened, std::string name);
  LibraryHandle(const LibraryHandle&) = delete;
  LibraryHandle& operator=(const LibraryHandle&) = delete;
  ~LibraryHandle();

  /// Whether a transaction or a snapshot is open.
  bool is_bound() const noexcept { return bound_to != std::thread::id(); }

  /// Of a library that closes: nobody is told of it, and its address may be another's soon.
  void forget();

  std::string file;
  std::unique_ptr<Hub> hub;                 ///< outlives the library, which calls it
  std::shared_ptr<Library> library;         ///< empty when it is closed
  std::thread::id bound_to;                 ///< whose transaction or snapshot is open
  std::unordered_set<const void*> touched;  ///< objects that the transaction may put back
  std::unique_ptr<Library::Snapshot> snapshot;
  std::unique_ptr<Library::Transaction> transaction;
};

/// The handle of a library that Python has opened; null if there is none.
LibraryHandle* handle_of(const Library* library);

/// Memory addresses of objects.
using Addresses = std::unordered_set<const void*>;

/// Libraries and objects that the calling thread uses, as long as this lives.
///
/// Throws, as exceptions of Python: `Closed`, and `ThreadError` if another thread uses one of them.
class Use {
 public:
  explicit Use(std::vector<LibraryHandle*> libraries, Addresses objects = {});
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;
  ~Use();

  bool has(const LibraryHandle* library) const;
  bool has(const void* object) const { return objects_.count(object) != 0; }
  std::thread::id thread() const noexcept { return thread_; }
  const std::vector<LibraryHandle*>& libraries() const noexcept { return libraries_; }

 private:
  std::vector<LibraryHandle*> libraries_;
  Addresses objects_;
  std::thread::id thread_ = std::this_thread::get_id();
};

/// Whether any thread, this one too, is within a call on the library.
bool is_in_use(const LibraryHandle& library);

/// Whether no thread is within any call.
bool nothing_is_used() noexcept;

/// Raises `ThreadError` if another thread uses the object or its library; `library` is asked only
/// where something is used at all.
void require_unused(const void* object, const std::shared_ptr<Library>& library);

/// Raises `Error` if the object is being saved, also by this thread.
void require_not_saved(const void* object);

template <class T>
void require_readable(const T& object) {
  if (nothing_is_used()) return;
  require_unused(&object, object.library());
}

/// The figures of a composition are those of its materials.
template <>
void require_readable(const Composition& composition);

template <class T>
void require_writable(const T& object) {
  if (nothing_is_used()) return;
  require_unused(&object, object.library());
  require_not_saved(&object);
}

/// While it lives in the main thread, Ctrl-C ends the operations on libraries.
class EndedBySignal {
 public:
  explicit EndedBySignal(const Use& use);
  EndedBySignal(const EndedBySignal&) = delete;
  EndedBySignal& operator=(const EndedBySignal&) = delete;
  ~EndedBySignal();

 private:
  static void on_signal(int number, siginfo_t* information, void* context);

  bool in_main_thread_;
  bool installed_ = false;
  const Use* outer_ = nullptr;
};

/// Raises the exception of the handler of a signal that has come, and what `report` raises. For the
/// progress of long work, which holds no lock of the interpreter.
void look_for_signals(py::handle report);

/// One thread at a time opens files.
std::recursive_mutex& opening();

/// Does work on the libraries of `use` without the interpreter's lock, and raises what it throws.
template <class Work>
auto run(const Use& use, const About& about, Work work) -> decltype(work()) {
  try {
    const EndedBySignal ended(use);
    const py::gil_scoped_release released;
    return work();
  } catch (...) {
    raise(std::current_exception(), about);
  }
}

/// The same for work that opens files.
template <class Work>
auto run_opening(const Use& use, const About& about, Work work) -> decltype(work()) {
  return run(use, about, [&] {
    const std::lock_guard<std::recursive_mutex> lock(opening());
    return work();
  });
}

}  // namespace veldra::python

#endif
