// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_PRELOAD_DEEDS_HPP
#define VELDRA_TESTS_PROGRAM_PRELOAD_DEEDS_HPP

#include "program/fault_plan.hpp"
#include "program/preload_calls.hpp"

namespace veldra_tests {

constexpr int most_descriptors = 256;

inline bool is_known(long descriptor) { return descriptor >= 0 && descriptor < most_descriptors; }

/// Enters into the plan what a call has done to a file, if that is one of `FaultPlan::deeds`.
void note_deed(FaultPlan& plan, const CallForm& form, const SystemCall& call);

/// Descriptors, which are known ones, keep the name that their file was opened by; another one of
/// the same file has the same.
void name_descriptor(const FaultPlan& plan, long descriptor, const char* path);
void name_as(long descriptor, long other);

}  // namespace veldra_tests

#endif
