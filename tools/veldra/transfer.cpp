// SPDX-License-Identifier: GPL-2.0-or-later
#include "transfer.hpp"

#include "reactor_guard.hpp"

namespace veldra_tool {

void transfer(const std::shared_ptr<veldra::Library>& staging,
              const std::shared_ptr<veldra::Library>& library, ConflictReactor& reactor,
              veldra::IdMapping& mapping, Progress& progress) {
  reactor.settle_codes(*library);
  reactor.on_saved([&progress] { progress.step(); });
  const ReactorGuard guard(*library, reactor);
  library->copyAll(staging, mapping);
}

}  // namespace veldra_tool
