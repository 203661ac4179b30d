// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_IDF_FIELDS_HPP
#define VELDRA_KIT_EXCHANGE_IDF_FIELDS_HPP

namespace veldra::kit {

/// The fields before the layers of a construction with a source of heat.
constexpr const char* fields_of_heat_source[] = {
    "source_present_after_layer_number", "temperature_calculation_requested_after_layer_number",
    "dimensions_for_the_ctf_calculation", "tube_spacing",
    "two_dimensional_temperature_calculation_position"};

}  // namespace veldra::kit

#endif
