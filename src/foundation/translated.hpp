// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_FOUNDATION_TRANSLATED_HPP
#define VELDRA_FOUNDATION_TRANSLATED_HPP

#include <veldra/string.hpp>

namespace veldra {

/// The text in the language of the host, or as it is where the host has no translation of it.
String translated(const String& source);

}  // namespace veldra

#endif
