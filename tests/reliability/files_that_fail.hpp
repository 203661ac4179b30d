// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_FILES_THAT_FAIL_HPP
#define VELDRA_TESTS_RELIABILITY_FILES_THAT_FAIL_HPP

#include "reliability/fault_vfs.hpp"
#include "reliability/sweep.hpp"

#include <string>
#include <vector>

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
  bool keep_files() const override { return repetition_ == FaultVfs::Repetition::Persistent; }

 private:
  FaultVfs::Trouble trouble_;
  FaultVfs::Repetition repetition_;
};

/// Sweeps over the operations with files that fail so.
inline void sweep_files(const std::vector<Operation>& operations, FaultVfs::Trouble trouble,
                        FaultVfs::Repetition repetition, unsigned sample, const std::string& what) {
  FilesThatFail faults(trouble, repetition);
  sweep(operations, faults, sample, what);
}

}  // namespace veldra_tests

#endif
