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
///     veldra::String longer((text + " 2").c_str());
///     if (name == other_name) { ... }
///
/// Throws: conversions are checked. Malformed text raises an exception of the utf8-cpp library,
/// derived from `std::exception` (`ErrorKind::MalformedText`), and the `String` that was to be
/// changed keeps its text:
///
/// - `utf8::invalid_utf8` for malformed UTF-8,
/// - `utf8::invalid_utf16` for a surrogate without its partner.
///
/// Besides these only `std::bad_alloc` is thrown.
///
/// Thread rule: as for a standard container. Several threads may read one `String`; while one
/// thread changes it, no other may use it.
class VELDRA_EXPORT String {
 public:
  /// Makes the empty text. Allocates nothing.
  String() noexcept;

  /// Copies a UTF-16 text that ends with 0. Null gives the empty text.
  ///
  /// Throws: `std::bad_alloc`.
  String(const unsigned short* text);

  /// Decodes a UTF-8 text that ends with 0. Null gives the empty text.
  ///
  /// Throws:
  /// - `utf8::invalid_utf8`: the text is not UTF-8.
  /// - `std::bad_alloc`.
  String(const char* utf8_text);

  /// Copies a text.
  ///
  /// Throws: `std::bad_alloc`.
  String(const String& other);

  /// Takes over a text and leaves `other` empty.
  String(String&& other) noexcept;

  /// Frees the text.
  ~String();

  /// Replaces the text by a copy of `text`. Null leaves the empty text. The array of the `String`
  /// itself leaves everything as it is.
  ///
  /// Throws: `std::bad_alloc`.
  String& operator=(const unsigned short* text);

  /// Replaces the text by a copy of another one.
  ///
  /// Throws: `std::bad_alloc`.
  String& operator=(const String& other);

  /// Takes over the text of `other`, which must not be used for its text afterwards.
  String& operator=(String&& other) noexcept;

  /// Replaces the text by the decoding of a UTF-8 text that ends with 0. Null leaves the empty
  /// text.
  ///
  /// Throws, and keeps the former text:
  /// - `utf8::invalid_utf8`: the text is not UTF-8.
  /// - `std::bad_alloc`.
  String& operator=(const char* utf8_text);

  /// Whether the text has no code unit.
  bool empty() const noexcept;

  /// The text as an array that ends with 0. Never null. Valid until the `String` is changed or
  /// destroyed.
  const unsigned short* c_str() const noexcept;

  /// Whether the text has at least one code unit.
  explicit operator bool() const noexcept;

  /// The text in UTF-8.
  ///
  /// Throws:
  /// - `utf8::invalid_utf16`: the text has a surrogate without its partner.
  /// - `std::bad_alloc`.
  std::string utf8() const;

  /// Replaces the text by the decoding of `text`, up to its first zero byte if it has one.
  ///
  /// Throws, and keeps the former text:
  /// - `utf8::invalid_utf8`: the text is not UTF-8.
  /// - `std::bad_alloc`.
  void utf8(const std::string& text);

 private:
  friend class StringAccess;

  unsigned short* text_;
};

/// Whether two texts are equal, code unit by code unit. `right` ends with 0 and must not be null.
VELDRA_EXPORT bool operator==(const String& left, const unsigned short* right) noexcept;

/// The opposite of `==`. `right` must not be null.
VELDRA_EXPORT bool operator!=(const String& left, const unsigned short* right) noexcept;

/// Whether two texts are equal, code unit by code unit. Case counts, and so does the way in which
/// an accent is written.
VELDRA_EXPORT bool operator==(const String& left, const String& right) noexcept;

/// The opposite of `==`.
VELDRA_EXPORT bool operator!=(const String& left, const String& right) noexcept;

/// Whether `left` comes before `right` in the order of their unsigned code units. A text comes
/// before all that it begins. No locale and no folding of case: "B" comes before "a".
VELDRA_EXPORT bool operator<(const String& left, const String& right) noexcept;

}  // namespace veldra

#endif
