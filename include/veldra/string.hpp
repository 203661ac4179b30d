// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STRING_HPP
#define VELDRA_STRING_HPP

#include <veldra/export.hpp>

#include <cstddef>
#include <string>

namespace veldra {

/// An owning UTF-16 text: every name, description and file name of the interface.
///
/// The text is an array of 16-bit code units that ends with 0; a `String` without an array is the
/// empty text. It can be made from UTF-16 and from UTF-8 and converts back to UTF-8:
///
///     veldra::String name("Gl\xC3\xA4tteputz");   // from UTF-8
///     std::string text = name.utf8();             // and back
///     if (name == other_name) { ... }
///
/// Conversions are checked: malformed UTF-8 raises `utf8::invalid_utf8`, an unpaired surrogate
/// raises `utf8::invalid_utf16` (the exceptions of the utf8-cpp library), and the `String` that
/// was to be changed keeps its text. Besides these only `std::bad_alloc` is thrown.
///
/// Thread rule: as for a standard container.
class VELDRA_EXPORT String {
 public:
  /// The empty text; allocates nothing.
  String() noexcept;

  /// A copy of a UTF-16 text that ends with 0. Null gives the empty text.
  String(const unsigned short* text);

  /// The decoding of a UTF-8 text that ends with 0. Null gives the empty text.
  /// Throws `utf8::invalid_utf8` for malformed UTF-8.
  String(const char* utf8_text);

  String(const String& other);
  String(String&& other) noexcept;
  ~String();

  /// Replaces the text by a copy of `text`; null leaves the empty text. Assigning a `String` its
  /// own array does nothing.
  String& operator=(const unsigned short* text);
  String& operator=(const String& other);
  String& operator=(String&& other) noexcept;

  /// Replaces the text by the decoding of `utf8_text`.
  /// Throws `utf8::invalid_utf8` for malformed UTF-8 and then keeps the former text.
  String& operator=(const char* utf8_text);

  /// Whether there is no text: no array, or an array that starts with its end.
  bool empty() const noexcept;

  /// The text, which ends with 0. Never null. Valid until the `String` changes or goes.
  const unsigned short* c_str() const noexcept;

  /// True exactly when the text is not empty.
  explicit operator bool() const noexcept;

  /// The text in UTF-8.
  /// Throws `utf8::invalid_utf16` when the text has an unpaired surrogate.
  std::string utf8() const;

  /// Replaces the text by the decoding of `text`, up to its first zero byte if it has one.
  /// Throws `utf8::invalid_utf8` for malformed UTF-8 and then keeps the former text.
  void utf8(const std::string& text);

 private:
  friend class StringAccess;

  unsigned short* text_;
};

/// Equality code unit by code unit; the empty text equals a `String` without a text.
/// A right side of `const unsigned short*` must not be null.
VELDRA_EXPORT bool operator==(const String& left, const unsigned short* right) noexcept;
VELDRA_EXPORT bool operator!=(const String& left, const unsigned short* right) noexcept;
VELDRA_EXPORT bool operator==(const String& left, const String& right) noexcept;
VELDRA_EXPORT bool operator!=(const String& left, const String& right) noexcept;

/// Lexicographic order of the unsigned code units, a prefix before what it starts. No case
/// folding, no locale: "B" comes before "a".
VELDRA_EXPORT bool operator<(const String& left, const String& right) noexcept;

}  // namespace veldra

#endif
