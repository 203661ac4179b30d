// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_HONEYBEE_MODEL_HPP
#define VELDRA_KIT_EXCHANGE_HONEYBEE_MODEL_HPP

#include "kit/exchange/source_model.hpp"

#include <string>

namespace veldra::kit {

/// The classes of materials of honeybee. Gases of a mixture, which stand in lists there, have the
/// keys that they have in epJSON.
const MaterialClasses& honeybee_classes();

/// The class of that name; null when there is none.
const MaterialClass* honeybee_class(const std::string& name);

/// The class of constructions of that name; null when there is none that has layers.
const ConstructionClass* honeybee_construction(const std::string& name);

/// Whether materials of a class are of windows.
bool is_of_windows(const MaterialClass& described);

constexpr int most_gases = 4;

/// The keys of a gas of a mixture, counted from 1.
std::string gas_type_key(int gas);
std::string gas_fraction_key(int gas);

}  // namespace veldra::kit

#endif
