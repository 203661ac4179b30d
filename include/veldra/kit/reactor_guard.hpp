// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_REACTOR_GUARD_HPP
#define VELDRA_KIT_REACTOR_GUARD_HPP

#include <veldra/library.hpp>

namespace veldra::kit {

/// Installs a reactor in a library for as long as it lives; afterwards the library has none. Both
/// must outlive it.
class ReactorGuard {
 public:
  /// Installs `reactor` in place of the one that the library has.
  ReactorGuard(Library& library, Library::Reactor& reactor) : library_(library) {
    library_.setReactor(&reactor);
  }
  ReactorGuard(const ReactorGuard&) = delete;
  ReactorGuard& operator=(const ReactorGuard&) = delete;

  /// Takes the reactor off.
  ~ReactorGuard() { library_.setReactor(nullptr); }

 private:
  Library& library_;
};

}  // namespace veldra::kit

#endif
