// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_SIGNALS_HPP
#define VELDRA_TESTS_PROGRAM_SIGNALS_HPP

#include "program/commands.hpp"

#include <string>
#include <vector>

namespace veldra_tests {

/// Sends a signal at random moments of these commands, by turns, until it came to `times` of them
/// before they had come to their end. Expects what `sweep` does.
void send_at_random(const std::vector<Command>& commands, int signal, unsigned times,
                    const std::string& what);

}  // namespace veldra_tests

#endif
