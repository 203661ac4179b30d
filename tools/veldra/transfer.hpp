#ifndef VELDRA_TOOL_TRANSFER_HPP
#define VELDRA_TOOL_TRANSFER_HPP

#include "conflicts.hpp"
#include "progress.hpp"

#include <veldra/veldra.hpp>

#include <memory>

namespace veldra_tool {

enum class Effect { Write, Pretend };

/// Copies all objects of a staging library into a library of the same unit, in one transaction.
/// With `Pretend` the transaction is taken back, and the mapping tells what it would have done.
void transfer(const std::shared_ptr<veldra::Library>& staging,
              const std::shared_ptr<veldra::Library>& library, ConflictReactor& reactor,
              veldra::IdMapping& mapping, Effect effect, Progress& progress);

}  // namespace veldra_tool

#endif
