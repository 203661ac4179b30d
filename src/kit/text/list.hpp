// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_TEXT_LIST_HPP
#define VELDRA_KIT_TEXT_LIST_HPP

#include <cstddef>
#include <string>
#include <vector>

namespace veldra::kit {

/// Names for the end of a sentence, as many as a person reads.
std::string list_of(const std::vector<std::string>& names, std::size_t most = 30);

}  // namespace veldra::kit

#endif
