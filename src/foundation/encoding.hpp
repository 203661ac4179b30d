// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_FOUNDATION_ENCODING_HPP
#define VELDRA_FOUNDATION_ENCODING_HPP

#include <veldra/string.hpp>

#include <cstddef>

namespace veldra {

/// The number of code units before the terminating 0.
std::size_t text_length(const unsigned short* text) noexcept;

/// How many bytes `units` code units of `text` take in UTF-8, if they are well-formed.
std::size_t utf8_size(const unsigned short* text, std::size_t units) noexcept;

/// Writes `units` code units of `text` as UTF-8 to `out`, which has room for that size, and returns
/// the end of what was written. Throws `utf8::invalid_utf16`.
char* encode_utf8(const unsigned short* text, std::size_t units, char* out);

/// The library's own way to what texts keep to themselves.
class StringAccess {
 public:
  /// `String::utf8` for `size` bytes at `text`, which need not end with 0.
  static void assign(String& string, const char* text, std::size_t size);
};

}  // namespace veldra

#endif
