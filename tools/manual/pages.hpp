// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_MANUAL_PAGES_HPP
#define VELDRA_MANUAL_PAGES_HPP

#include "description.hpp"

namespace veldra_manual {

// What is made of the description, as texts of whole files.

/// The page of the program in the form of man(7), and that of one command.
std::string man_page(const Description& program);
std::string man_page(const Description& program, const Command& command);

/// The page of one command in Markdown, for the site.
std::string markdown_page(const Description& program, const Command& command);

// Completion of what is typed in shells.
std::string bash_completion(const Description& program);
std::string zsh_completion(const Description& program);
std::string fish_completion(const Description& program);

}  // namespace veldra_manual

#endif
