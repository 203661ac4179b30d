// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/string.hpp>

#include "foundation/encoding.hpp"

#include <utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>

namespace veldra {

namespace {

const unsigned short no_text[] = {0};

using Units = std::unique_ptr<unsigned short[]>;

Units copy_of(const unsigned short* text) {
  if (text == nullptr || *text == 0) return nullptr;
  const std::size_t size = text_length(text) + 1;
  Units units(new unsigned short[size]);
  std::copy(text, text + size, units.get());
  return units;
}

/// How many code units the decoding takes. Exact for well-formed text, and never less than what
/// is written before malformed text is met: each character is counted at its first byte.
std::size_t decoded_size(const char* text, std::size_t size) noexcept {
  std::size_t units = 0;
  for (std::size_t i = 0; i != size; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    units +=
        static_cast<std::size_t>((byte & 0xC0) != 0x80) + static_cast<std::size_t>(byte >= 0xF0);
  }
  return units;
}

/// Most texts are ASCII, which needs no conversion. As many code units as fit into a word are
/// looked at at once: this is asked of every text that is read or written.
template <class Unit>
bool is_ascii(const Unit* text, std::size_t size) noexcept {
  using Unsigned = std::make_unsigned_t<Unit>;
  constexpr std::size_t at_once = sizeof(std::uint64_t) / sizeof(Unit);
  // The bits of each code unit that are set in no ASCII character.
  constexpr Unsigned other = static_cast<Unsigned>(~Unsigned{0x7F});
  constexpr std::uint64_t others = ~std::uint64_t{0} / std::numeric_limits<Unsigned>::max() * other;

  std::uint64_t bits = 0;
  std::size_t i = 0;
  for (; size - i >= at_once; i += at_once) {
    std::uint64_t word;
    std::memcpy(&word, text + i, sizeof word);
    bits |= word;
  }
  for (; i != size; ++i) bits |= static_cast<Unsigned>(text[i]);
  return (bits & others) == 0;
}

/// Writes the decoding to `units` and returns its end.
unsigned short* convert(const char* text, std::size_t size, unsigned short* units) {
  try {
    return utf8::utf8to16(text, text + size, units);
  } catch (const utf8::invalid_utf8&) {
    throw;
  } catch (const utf8::exception&) {
    // The converter tells a cut-off character and an impossible code point apart from other
    // malformed text; callers need not.
    throw utf8::invalid_utf8(static_cast<unsigned char>(*utf8::find_invalid(text, text + size)));
  }
}

Units decode(const char* text, std::size_t size) {
  if (size == 0) return nullptr;
  const bool ascii = is_ascii(text, size);
  Units units(new unsigned short[(ascii ? size : decoded_size(text, size)) + 1]);
  unsigned short* const end =
      ascii ? std::copy(text, text + size, units.get()) : convert(text, size, units.get());
  *end = 0;
  return units;
}

}  // namespace

std::size_t text_length(const unsigned short* text) noexcept {
  const unsigned short* end = text;
  while (*end != 0) ++end;
  return static_cast<std::size_t>(end - text);
}

namespace {

/// Half of a character that takes two code units.
bool is_surrogate(unsigned short unit) noexcept { return (unit & 0xF800) == 0xD800; }

}  // namespace

/// Each half of a character of four bytes counts as two.
std::size_t utf8_size(const unsigned short* text, std::size_t units) noexcept {
  if (is_ascii(text, units)) return units;
  std::size_t size = units;
  for (const unsigned short* unit = text; unit != text + units; ++unit) {
    size += static_cast<std::size_t>(*unit >= 0x80) +
            static_cast<std::size_t>(*unit >= 0x800 && !is_surrogate(*unit));
  }
  return size;
}

char* encode_utf8(const unsigned short* text, std::size_t units, char* out) {
  const unsigned short* const end = text + units;
  if (is_ascii(text, units)) return std::copy(text, end, out);
  return utf8::utf16to8(text, end, out);
}

String::String() noexcept : text_(nullptr) {}

String::String(const unsigned short* text) : text_(copy_of(text).release()) {}

String::String(const char* utf8_text)
    : text_(utf8_text == nullptr ? nullptr : decode(utf8_text, std::strlen(utf8_text)).release()) {}

String::String(const String& other) : String(other.text_) {}

String::String(String&& other) noexcept : text_(other.text_) { other.text_ = nullptr; }

String::~String() { delete[] text_; }

String& String::operator=(const unsigned short* text) {
  if (text == text_) return *this;
  // The new text may be a part of the old one, so it is copied before that goes.
  return *this = String(text);
}

String& String::operator=(const String& other) { return *this = other.text_; }

String& String::operator=(String&& other) noexcept {
  if (this == &other) return *this;
  delete[] text_;
  text_ = other.text_;
  other.text_ = nullptr;
  return *this;
}

String& String::operator=(const char* utf8_text) { return *this = String(utf8_text); }

bool String::empty() const noexcept { return text_ == nullptr || *text_ == 0; }

const unsigned short* String::c_str() const noexcept { return text_ == nullptr ? no_text : text_; }

String::operator bool() const noexcept { return !empty(); }

std::string String::utf8() const {
  const std::size_t units = text_length(c_str());
  std::string text(utf8_size(c_str(), units), '\0');
  if (units != 0) encode_utf8(text_, units, &text[0]);
  return text;
}

void String::utf8(const std::string& text) {
  StringAccess::assign(*this, text.data(), text.size());
}

void StringAccess::assign(String& string, const char* text, std::size_t size) {
  const void* zero = size == 0 ? nullptr : std::memchr(text, 0, size);
  if (zero != nullptr) size = static_cast<std::size_t>(static_cast<const char*>(zero) - text);
  Units units = decode(text, size);
  delete[] string.text_;
  string.text_ = units.release();
}

bool operator==(const String& left, const unsigned short* right) noexcept {
  const unsigned short* unit = left.c_str();
  for (; *unit == *right; ++unit, ++right) {
    if (*unit == 0) return true;
  }
  return false;
}

bool operator!=(const String& left, const unsigned short* right) noexcept {
  return !(left == right);
}

bool operator==(const String& left, const String& right) noexcept { return left == right.c_str(); }

bool operator!=(const String& left, const String& right) noexcept { return !(left == right); }

bool operator<(const String& left, const String& right) noexcept {
  const unsigned short* a = left.c_str();
  const unsigned short* b = right.c_str();
  for (; *a == *b; ++a, ++b) {
    if (*a == 0) return false;
  }
  return *a < *b;
}

}  // namespace veldra
