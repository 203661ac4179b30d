// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_TEXT_HPP
#define VELDRA_KIT_TEXT_HPP

#include <veldra/kit/export.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veldra::kit {

// Texts of the kit are UTF-8.

/// The form in which texts are compared by people: without regard to case, by the full case folding
/// of Unicode, and to accents. "ÄNDERN", "ändern" and "andern" have one form, and so have "Straße"
/// and "STRASSE". Marks of scripts in which they are no accents, such as vowels, stay.
///
/// A text that is not UTF-8 comes back as it is.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string folded(std::string_view text);

/// The text in lower case, character by character: the form in which sources are read whose names
/// ignore case. Accents count, and "ß" is not "ss". Of a text that is not UTF-8 it is the part
/// before the first malformed character.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string lower_case(std::string_view text);

/// The text without the blanks and line breaks of ASCII around it.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string trimmed(std::string_view text);

/// Whether a text is UTF-8, with no character that does not exist.
VELDRA_KIT_EXPORT bool is_utf8(std::string_view text);

/// The text with each byte taken for the character of that number, as Latin-1 has them.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string from_latin1(std::string_view text);

/// The text as it is if it is UTF-8, and else as if it were Latin-1.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string in_utf8(const std::string& text);

/// The text with what `replacement` gives in the place of each character that can steer a terminal
/// or turn the direction of the text around it, and of the two that no XML may have. Of a text that
/// is not UTF-8 it is the part before the first malformed character.
///
/// Throws: `std::bad_alloc`, and the exceptions of `replacement`.
VELDRA_KIT_EXPORT std::string without_controls(std::string_view text,
                                               std::string (*replacement)(char32_t));

/// A JSON text in which those characters stand as the escapes that JSON has for them; line breaks
/// between its values stay.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string without_controls_in_json(std::string_view json);

/// The shortest text that reads back to the same number.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string exact_number(double number);

/// A number for people: at most that many decimals, no trailing zeros; "?" for what is none.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string rounded_number(double number, int decimals);

/// The same for places of limited width: what would take more than seven digits becomes two digits
/// and a power of ten, such as 1.5·10⁹.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string short_number(double number, int decimals);

/// A number for such places, with just that many decimals.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string fixed_number(double number, int decimals);

/// The number of columns that a text takes where all characters are equally wide, or twice as wide,
/// such as Chinese ones, or take no place. Of a text that is not UTF-8 the part before the first
/// malformed character counts.
VELDRA_KIT_EXPORT std::size_t display_width(std::string_view text);

/// As much of the beginning of a text as takes no more than so many columns.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string leading_columns(std::string_view text, std::size_t columns);

/// The number that a text says, decimal and with a point, whatever the locale. Blanks around it do
/// not matter. Empty if the text has anything else, and for what is not finite.
VELDRA_KIT_EXPORT std::optional<double> number_in(std::string_view text);

/// Finds the names that are most like one that is not there, such as "Brick" for "Birck". Case and
/// accents do not count, nor does the order of two neighbouring letters much.
///
///     veldra::kit::Nearest nearest("Birck");
///     for (const auto& name : names) nearest.offer(name);
///     ask(nearest.names());
///
/// Keeps the best names only, so that any number of them can be offered.
///
/// Thread rule: one thread at a time uses an object.
class VELDRA_KIT_EXPORT Nearest {
 public:
  /// Begins the search for names like `wanted`, of which at most `most` are kept.
  ///
  /// Throws: `std::bad_alloc`.
  explicit Nearest(const std::string& wanted, std::size_t most = 3);

  /// Looks at a name. One that needs more than a change in three letters is not near, unless the
  /// name that is wanted is nearly a part of it.
  ///
  /// Throws: `std::bad_alloc`.
  void offer(const std::string& name);

  /// The names that are near, the nearest first, and of names that are equally near the one that
  /// was offered first.
  ///
  /// Throws: `std::bad_alloc`.
  std::vector<std::string> names() const;

 private:
  struct Found {
    std::size_t distance;
    std::string name;
  };

  void keep(Found found);

  std::u32string wanted_;
  std::size_t most_;
  std::vector<Found> found_;
};

/// The names that are nearest to `wanted` (`Nearest`).
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<std::string> nearest(const std::string& wanted,
                                                   const std::vector<std::string>& names);

/// A question such as "; did you mean 'Brick' or 'Block'?" for the end of a sentence; empty for no
/// names.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string suggestion(const std::vector<std::string>& names);

/// The end of a sentence that there is nothing of the name `wanted`: what was perhaps meant, and
/// what there is, as "; did you mean 'Brick'? there are Brick, Wool". Of more than `most` names the
/// nearest come first, and the rest is counted. Empty for no names.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string choice_of(const std::string& wanted,
                                        const std::vector<std::string>& names,
                                        std::size_t most = 20);

}  // namespace veldra::kit

#endif
