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

/// What is said of a position that no layer can have.
constexpr const char* positions_allowed = "it must be a position, counted from 1";

/// `value_text` of a value of a field, but positions of layers count from 1.
std::string counted_text(const FieldDescription& field, const Value& value);

}  // namespace veldra::kit

#endif
