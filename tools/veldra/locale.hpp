// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_LOCALE_HPP
#define VELDRA_TOOL_LOCALE_HPP

#include <string>

namespace veldra_tool {

/// Whether a text is the name of a locale: a language of ISO 639, a script of four letters if need
/// be, and a country of ISO 3166 or a region of UN M.49 if need be, such as "de", "de_AT", "de-CH"
/// or "sr_Latn_RS".
bool is_locale(const std::string& text);

}  // namespace veldra_tool

#endif
