#ifndef VELDRA_FOUNDATION_ENCODING_HPP
#define VELDRA_FOUNDATION_ENCODING_HPP

#include <cstddef>

namespace veldra {

/// The number of code units before the terminating 0.
std::size_t text_length(const unsigned short* text) noexcept;

/// The most UTF-8 bytes that `units` code units can take.
constexpr std::size_t utf8_bound(std::size_t units) { return 3 * units; }

/// Writes `units` code units of `text` as UTF-8 to `out`, which has room for the bound, and
/// returns the end of what was written. Throws `utf8::invalid_utf16`.
char* encode_utf8(const unsigned short* text, std::size_t units, char* out);

}  // namespace veldra

#endif
