#ifndef VELDRA_TESTS_RELIABILITY_FILES_THAT_FAIL_HPP
#define VELDRA_TESTS_RELIABILITY_FILES_THAT_FAIL_HPP

#include "reliability/fault_vfs.hpp"
#include "reliability/sweep.hpp"

namespace veldra_tests {

/// The faults of the failing file system.
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

}  // namespace veldra_tests

#endif
