// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_REACTOR_GUARD_HPP
#define VELDRA_TOOL_REACTOR_GUARD_HPP

#include <veldra/veldra.hpp>

namespace veldra_tool {

/// Installs a reactor for as long as it lives.
class ReactorGuard {
 public:
  ReactorGuard(veldra::Library& library, veldra::Library::Reactor& reactor) : library_(library) {
    library_.setReactor(&reactor);
  }
  ReactorGuard(const ReactorGuard&) = delete;
  ReactorGuard& operator=(const ReactorGuard&) = delete;
  ~ReactorGuard() { library_.setReactor(nullptr); }

 private:
  veldra::Library& library_;
};

}  // namespace veldra_tool

#endif
