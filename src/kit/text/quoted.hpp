// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_TEXT_QUOTED_HPP
#define VELDRA_KIT_TEXT_QUOTED_HPP

#include <veldra/kit/text.hpp>

#include <string>

namespace veldra::kit {

/// A name as it stands in sentences. A sentence is UTF-8 whatever it quotes.
inline std::string quoted(const std::string& name) { return "'" + in_utf8(name) + "'"; }

}  // namespace veldra::kit

#endif
