// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_FIELDS_COMPARE_HPP
#define VELDRA_KIT_FIELDS_COMPARE_HPP

#include <veldra/kit/fields.hpp>

namespace veldra::kit {

/// Whether two values are the same. Lengths that are may have come through other units and back.
bool same_value(const Value& left, const Value& right, Measure measure);

/// Whether a copy of an object has the value of a field, too. Nothing else can tell two objects
/// apart.
bool is_copied(const FieldDescription& field);

/// Tags say where something came from, and never make an object differ.
bool is_tags(const FieldDescription& field);

}  // namespace veldra::kit

#endif
