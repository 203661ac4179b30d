// SPDX-License-Identifier: GPL-2.0-or-later
#include "text.hpp"

#include "failure.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

std::string escape_of(char32_t character) {
  switch (character) {
    case U'\n':
      return "\\n";
    case U'\r':
      return "\\r";
    case U'\t':
      return "\\t";
  }
  return fmt::format(character < 0x100 ? "\\x{:02x}" : "\\u{:04x}",
                     static_cast<unsigned>(character));
}

}  // namespace

std::string printable(std::string_view text) {
  return is_utf8(text) ? without_controls(text, escape_of)
                       : without_controls(kit::from_latin1(text), escape_of);
}

veldra::String library_text(const std::string& text) {
  try {
    return kit::library_text(text);
  } catch (const kit::Error& error) {
    throw Failure(error.what());
  }
}

}  // namespace veldra_tool
