// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_DRAWING_SENTENCES_HPP
#define VELDRA_KIT_DRAWING_SENTENCES_HPP

#include "kit/drawing/words.hpp"

#include <string>

namespace veldra::kit {

/// What the kit says of a build-up (notes, faults, names of corrections) in the language of a
/// sheet; as it is where the language has no word for it.
std::string in_language(const std::string& sentence, const Words& words);

}  // namespace veldra::kit

#endif
