// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_KINDS_HPP
#define VELDRA_TOOL_KINDS_HPP

#include "kit.hpp"

#include <veldra/veldra.hpp>

#include <map>
#include <string>

namespace veldra_tool {

using kit::all_kinds;
using kit::name_of;
using kit::plural_of;
using kit::singular_of;
using kit::with_class_of;

/// The names of the kinds on the command line, in plural and singular.
const std::map<std::string, veldra::ObjectType>& kinds_by_name();

/// The type of that name; throws `Failure` when there is none.
veldra::Composition::Type composition_type(const std::string& name);

}  // namespace veldra_tool

#endif
