// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_PRELOAD_SYSTEM_HPP
#define VELDRA_TESTS_PROGRAM_PRELOAD_SYSTEM_HPP

namespace veldra_tests {

/// A call into the system. Its arguments are what the processor's registers hold.
struct SystemCall {
  long number;
  long arguments[6];
};

/// Makes the call past the filter below; gives what the system gave: errors are negative.
long perform(const SystemCall& call);

/// From now on, each of these calls that the process makes is handed to `handler`, wherever the
/// code lies that makes it, the C library included. What the handler returns is the result.
/// Returns whether the system allows that.
bool divert_calls(const long* numbers, unsigned count, long (*handler)(const SystemCall&));

}  // namespace veldra_tests

#endif
