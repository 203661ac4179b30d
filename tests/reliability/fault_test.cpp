// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/files_that_fail.hpp"

#include <gtest/gtest.h>

namespace veldra_tests {

namespace {

using Repetition = FaultVfs::Repetition;
using Trouble = FaultVfs::Trouble;

const unsigned sample = 3;

TEST(FileFaults, an_error_of_one_call_leaves_the_old_state_or_the_new_one) {
  sweep_files(operations(), Trouble::Error, Repetition::Once, sample, "errors of one call");
}

TEST(FileFaults, errors_of_all_calls_leave_the_old_state_or_the_new_one) {
  sweep_files(operations(), Trouble::Error, Repetition::Persistent, sample,
              "errors of all calls from one on");
}

TEST(FileFaults, a_full_disk_leaves_the_old_state) {
  sweep_files(writing_operations(), Trouble::DiskFull, Repetition::Persistent, sample,
              "full disks");
}

TEST(FileFaults, a_short_write_leaves_the_old_state_or_the_new_one) {
  sweep_files(writing_operations(), Trouble::ShortWrite, Repetition::Once, sample, "short writes");
}

}  // namespace

}  // namespace veldra_tests
