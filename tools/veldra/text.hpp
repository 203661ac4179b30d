#ifndef VELDRA_TOOL_TEXT_HPP
#define VELDRA_TOOL_TEXT_HPP

#include <veldra/veldra.hpp>

#include <string>
#include <string_view>

namespace veldra_tool {

// Texts are UTF-8 on this side of the library. All of this needs the locale that
// `use_unicode()` sets.

/// Makes the functions for wide characters of the C library know Unicode.
void use_unicode();

bool is_utf8(std::string_view text);

/// Each byte taken for the character of that number.
std::string from_latin1(std::string_view text);

/// The form in which texts are compared without regard to case.
std::string folded(std::string_view text);

std::string trimmed(std::string_view text);

/// The number of columns that a text takes on a terminal.
std::size_t display_width(std::string_view text);

/// The text with control characters written as escapes, so that it can neither break a table nor
/// steer a terminal.
std::string printable(std::string_view text);

/// The text as one of the library's. Throws `Failure` when it is not UTF-8 or has a zero byte,
/// which the library takes for the end.
veldra::String library_text(const std::string& text);

/// The shortest text that reads back to the same number.
std::string exact_number(double number);

/// A number for people: at most that many decimals, no trailing zeros.
std::string rounded_number(double number, int decimals);

}  // namespace veldra_tool

#endif
