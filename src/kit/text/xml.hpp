// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_TEXT_XML_HPP
#define VELDRA_KIT_TEXT_XML_HPP

#include <string>
#include <string_view>

namespace veldra::kit {

/// The text without what has a meaning in XML. `as_written` gives how all other bytes stand there.
template <class AsWritten>
std::string escaped_in_xml(std::string_view text, AsWritten as_written) {
  std::string result;
  for (const char character : text) {
    switch (character) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += as_written(character);
    }
  }
  return result;
}

}  // namespace veldra::kit

#endif
