// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_TEXT_QUOTED_HPP
#define VELDRA_KIT_TEXT_QUOTED_HPP

#include <veldra/kit/text.hpp>

#include <string>

namespace veldra::kit {

/// A name as it stands in sentences. A sentence is UTF-8 whatever it quotes, and must not end at a
/// zero byte, as the text of an exception does.
inline std::string quoted(const std::string& name) {
  std::string text = in_utf8(name);
  for (auto zero = text.find('\0'); zero != std::string::npos; zero = text.find('\0')) {
    text.replace(zero, 1, "\\x00");
  }
  return "'" + text + "'";
}

}  // namespace veldra::kit

#endif
