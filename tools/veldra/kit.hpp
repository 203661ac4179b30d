// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_KIT_HPP
#define VELDRA_TOOL_KIT_HPP

#include <veldra/kit/kit.hpp>

namespace veldra_tool {

namespace kit = veldra::kit;

}  // namespace veldra_tool

#endif
