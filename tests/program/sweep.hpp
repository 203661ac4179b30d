// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_SWEEP_HPP
#define VELDRA_TESTS_PROGRAM_SWEEP_HPP

#include "program/commands.hpp"
#include "program/faults.hpp"

#include <string>
#include <vector>

namespace veldra_tests {

/// Runs each command with a fault of this kind at about `sample` points, or at every point in a
/// long run (every 499th byte of a disk), and reports the number of those that were met as the
/// figure `what`. Expects after each:
///
///  - a library that was there is sound, and its rows are as before or as after the command; a new
///    one, and every other file that is written, is there whole or not at all;
///  - all other files are as they were, and no others are left; those that cannot be removed, since
///    removing is what fails, are one temporary file and journals;
///  - the exit status is one of the program's, and true: 0 and 3 mean the state after and that
///    everything was told (3: or that it could not), 1 means the state before and one sentence;
///  - the same command works then, or what it did can be used;
///  - short writes, and calls that the system does not have, make no difference.
void sweep(const std::vector<Command>& commands, const Fault& fault, unsigned sample,
           const std::string& what);

}  // namespace veldra_tests

#endif
