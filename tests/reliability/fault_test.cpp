#include "reliability/files_that_fail.hpp"

#include <gtest/gtest.h>

namespace veldra_tests {

namespace {

const unsigned sample = 3;

TEST(FileFaults, an_error_of_one_call_leaves_the_old_state_or_the_new_one) {
  FilesThatFail faults(FaultVfs::Trouble::Error, FaultVfs::Repetition::Once);
  sweep(operations(), faults, sample, "errors of one call");
}

TEST(FileFaults, errors_of_all_calls_leave_the_old_state_or_the_new_one) {
  FilesThatFail faults(FaultVfs::Trouble::Error, FaultVfs::Repetition::Persistent);
  sweep(operations(), faults, sample, "errors of all calls from one on");
}

TEST(FileFaults, a_full_disk_leaves_the_old_state) {
  FilesThatFail faults(FaultVfs::Trouble::DiskFull, FaultVfs::Repetition::Persistent);
  sweep(writing_operations(), faults, sample, "full disks");
}

TEST(FileFaults, a_short_write_leaves_the_old_state_or_the_new_one) {
  FilesThatFail faults(FaultVfs::Trouble::ShortWrite, FaultVfs::Repetition::Once);
  sweep(writing_operations(), faults, sample, "short writes");
}

}  // namespace

}  // namespace veldra_tests
