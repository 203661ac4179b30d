// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_PRELOAD_HPP
#define VELDRA_TESTS_PROGRAM_PRELOAD_HPP

#include "program/fault_plan.hpp"

// A library that is loaded before all others into the program that is tested, and makes what it
// asks of the system fail. It uses nothing of the C++ library at run time: the program's own may be
// instrumented, or be what is failing.

namespace veldra_tests {

/// Nothing before the program's main begins.
FaultPlan* plan();

/// Counts something that may go wrong, and says whether it does.
bool is_due(FaultPlan& plan);

/// Of the calls into the file system, from now on.
bool divert_file_calls();

/// Sees to it that the editor that the program starts works as usual. Before calls are diverted.
bool prepare_editor();

}  // namespace veldra_tests

#endif
