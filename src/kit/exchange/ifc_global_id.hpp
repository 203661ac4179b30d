// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_IFC_GLOBAL_ID_HPP
#define VELDRA_KIT_EXCHANGE_IFC_GLOBAL_ID_HPP

#include <string>

namespace veldra::kit {

/// The GlobalId of what a text names, the same for the same text: 22 characters, which stand for
/// 128 bits.
std::string ifc_global_id(const std::string& name);

}  // namespace veldra::kit

#endif
