// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PROGRESS_HPP
#define VELDRA_KIT_PROGRESS_HPP

#include <functional>

namespace veldra::kit {

/// Is called by long work now and then, for each object that is done at most once, on the thread of
/// the caller. What it throws ends the work and comes out of the function that was called, which
/// has changed nothing then. An empty one is not called.
using Progress = std::function<void()>;

}  // namespace veldra::kit

#endif
