// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_GUID_HPP
#define VELDRA_STORE_GUID_HPP

#include <veldra/string.hpp>

namespace veldra {

/// The GUID of a new library in its canonical text: the one that `text` is, a random one for an
/// empty text, and else the one that is always made from that text.
String make_guid(const String& text);

}  // namespace veldra

#endif
