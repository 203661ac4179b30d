// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_FIELDS_FIELD_HPP
#define VELDRA_KIT_FIELDS_FIELD_HPP

#include "kit/text/list.hpp"

#include <veldra/kit/fields.hpp>

#include <string>
#include <vector>

namespace veldra::kit {

/// A sentence that there is no such thing, what was perhaps meant, and what there is.
std::string absence_of(const std::string& what, const std::string& name,
                       const std::vector<std::string>& names);

}  // namespace veldra::kit

#endif
