// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_FIELDS_PARTS_HPP
#define VELDRA_KIT_FIELDS_PARTS_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veldra::kit {

constexpr char list_separator = ';';
constexpr char layer_separator = '|';

/// The texts with the separator between them, each in double quotes where it needs them.
std::string joined(const std::vector<std::string>& parts, char separator);

/// The parts between separators that stand outside of double quotes, each as it was written but for
/// blanks around it; an empty text has none.
std::vector<std::string> split(std::string_view text, char separator);

/// A part without its quotes. Empty where quotes are open, or something stands beside them.
std::optional<std::string> unquoted(const std::string& part);

}  // namespace veldra::kit

#endif
