#include "reliability/fault_vfs.hpp"
#include "reliability/sweep.hpp"

#include <gtest/gtest.h>

namespace veldra_tests {

namespace {

const unsigned sample = 3;

class FilesThatFail : public Faults {
 public:
  FilesThatFail(FaultVfs::Trouble trouble, FaultVfs::Repetition repetition)
      : trouble_(trouble), repetition_(repetition) {}

  void arm(unsigned point) override { FaultVfs::arm({trouble_, point, repetition_}); }
  void disarm() override { FaultVfs::disarm(); }
  bool fired() const override { return FaultVfs::fired(); }
  unsigned points() const override { return FaultVfs::calls(); }
  std::string vfs() const override { return FaultVfs::name_of(""); }
  bool of_memory() const override { return false; }

 private:
  FaultVfs::Trouble trouble_;
  FaultVfs::Repetition repetition_;
};

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
