// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_NUMBERS_HPP
#define VELDRA_TOOL_NUMBERS_HPP

#include <veldra/veldra.hpp>

#include <string>
#include <vector>

namespace veldra_tool {

// What is wrong with the numbers of an object, a sentence each that follows the object's name.

/// What the library takes and does not find fault with itself (`Library::check`).
std::vector<std::string> doubtful_numbers(const veldra::Material& material);
std::vector<std::string> doubtful_numbers(const veldra::Composition& composition);

/// The same, and what the library finds when it has the object.
std::vector<std::string> wrong_numbers(const veldra::Material& material);
std::vector<std::string> wrong_numbers(const veldra::Composition& composition);

}  // namespace veldra_tool

#endif
