// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_FAULTS_HPP
#define VELDRA_TESTS_PROGRAM_FAULTS_HPP

#include "program/fault_plan.hpp"
#include "support/temporary.hpp"

#include <string>
#include <vector>

namespace veldra_tests {

/// What is to go wrong in a run of the program.
struct Fault {
  Trouble trouble = Trouble::Error;
  int error = 0;
  bool lasting = false;
  long only = -1;           ///< the number of a call; -1 is all
  unsigned long point = 0;  ///< 0: nothing, but what could be is counted

  std::string text() const;
};

/// The plan of one run.
class SharedPlan {
 public:
  SharedPlan(const Fault& fault, const std::string& folder);
  SharedPlan(const SharedPlan&) = delete;
  SharedPlan& operator=(const SharedPlan&) = delete;
  ~SharedPlan();

  /// What the program must find in its environment.
  std::vector<std::string> environment() const;

  const FaultPlan& operator*() const { return *plan_; }
  const FaultPlan* operator->() const { return plan_; }

  /// The call that failed, for people.
  std::string text() const;

 private:
  TemporaryFolder folder_;
  FaultPlan* plan_;
};

}  // namespace veldra_tests

#endif
