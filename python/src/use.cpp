// SPDX-License-Identifier: GPL-2.0-or-later
#include "use.hpp"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <utility>

namespace veldra::python {

namespace {

std::map<const Library*, LibraryHandle*>& handles() {
  static std::map<const Library*, LibraryHandle*> result;
  return result;
}

/// Of all threads, in the order in which they have begun.
std::vector<const Use*>& uses() {
  static std::vector<const Use*> result;
  return result;
}

std::atomic<const Use*> main_use{nullptr};
volatile std::sig_atomic_t signal_has_come = 0;
struct sigaction handler_before;

bool is_main_thread() { return syscall(SYS_gettid) == getpid(); }

[[noreturn]] void raise_used(const std::string& file) {
  raise("ThreadError", "another thread uses the library", {file, {}});
}

void require_free(const LibraryHandle& library) {
  if (!library.library) raise("Closed", "the library is closed", {library.file, {}});
  const auto me = std::this_thread::get_id();
  if (library.is_bound() && library.bound_to != me) raise_used(library.file);
  for (const Use* use : uses()) {
    if (use->thread() != me && use->has(&library)) raise_used(library.file);
  }
}

}  // namespace

LibraryHandle::LibraryHandle(std::shared_ptr<Library> opened, std::string name)
    : file(std::move(name)), hub(std::make_unique<Hub>(*this)), library(std::move(opened)) {
  library->setReactor(hub.get());
  handles()[library.get()] = this;
}

LibraryHandle::~LibraryHandle() { forget(); }

void LibraryHandle::forget() {
  hub->fall_silent();
  if (library) handles().erase(library.get());
}

LibraryHandle* handle_of(const Library* library) {
  const auto found = handles().find(library);
  return found == handles().end() ? nullptr : found->second;
}

Use::Use(std::vector<LibraryHandle*> libraries, Addresses objects)
    : libraries_(std::move(libraries)), objects_(std::move(objects)) {
  for (const LibraryHandle* library : libraries_) require_free(*library);
  for (const void* object : objects_) require_unused(object, nullptr);
  uses().push_back(this);
}

Use::~Use() { uses().erase(std::find(uses().begin(), uses().end(), this)); }

bool Use::has(const LibraryHandle* library) const {
  return std::find(libraries_.begin(), libraries_.end(), library) != libraries_.end();
}

bool is_in_use(const LibraryHandle& library) {
  return std::any_of(uses().begin(), uses().end(),
                     [&](const Use* use) { return use->has(&library); });
}

bool nothing_is_used() noexcept { return uses().empty(); }

void require_unused(const void* object, const std::shared_ptr<Library>& library) {
  const auto me = std::this_thread::get_id();
  for (const Use* use : uses()) {
    if (use->thread() == me) continue;
    const LibraryHandle* const handle = library ? handle_of(library.get()) : nullptr;
    if (use->has(object) || (handle != nullptr && use->has(handle))) {
      raise_used(handle != nullptr ? handle->file : "");
    }
  }
}

template <>
void require_readable(const Composition& composition) {
  if (nothing_is_used()) return;
  require_unused(&composition, composition.library());
  for (const auto& layer : composition.layers()) {
    if (layer.material()) require_unused(layer.material().get(), layer.material()->library());
  }
}

void require_not_saved(const void* object) {
  for (const Use* use : uses()) {
    if (use->has(object))
      raise("Error", "the object is being saved, and must not change meanwhile");
  }
}

EndedBySignal::EndedBySignal(const Use& use) : in_main_thread_(is_main_thread()) {
  if (!in_main_thread_) return;
  outer_ = main_use.exchange(&use);
  struct sigaction now {};
  sigaction(SIGINT, nullptr, &now);
  const bool is_plain = (now.sa_flags & SA_SIGINFO) == 0;
  if (is_plain && (now.sa_handler == SIG_DFL || now.sa_handler == SIG_IGN)) return;
  if (!is_plain && now.sa_sigaction == &on_signal) return;
  handler_before = now;
  signal_has_come = 0;
  now.sa_flags |= SA_SIGINFO;
  now.sa_sigaction = &on_signal;
  installed_ = sigaction(SIGINT, &now, nullptr) == 0;
}

EndedBySignal::~EndedBySignal() {
  if (!in_main_thread_) return;
  main_use = outer_;
  if (!installed_) return;
  struct sigaction now {};
  sigaction(SIGINT, nullptr, &now);
  // A callback may have installed another one, which is not ours to remove.
  if ((now.sa_flags & SA_SIGINFO) != 0 && now.sa_sigaction == &on_signal) {
    sigaction(SIGINT, &handler_before, nullptr);
  }
}

void EndedBySignal::on_signal(int number, siginfo_t* information, void* context) {
  signal_has_come = 1;
  if (const Use* use = main_use) {
    for (LibraryHandle* library : use->libraries()) library->library->interrupt();
  }
  if ((handler_before.sa_flags & SA_SIGINFO) != 0) {
    handler_before.sa_sigaction(number, information, context);
  } else {
    handler_before.sa_handler(number);
  }
}

void look_for_signals(py::handle report) {
  const bool has_come = signal_has_come != 0 && is_main_thread();
  if (!has_come && report.is_none()) return;
  const py::gil_scoped_acquire acquired;
  if (has_come && PyErr_CheckSignals() != 0) throw py::error_already_set();
  if (!report.is_none()) report();
}

std::recursive_mutex& opening() {
  static std::recursive_mutex mutex;
  return mutex;
}

}  // namespace veldra::python
