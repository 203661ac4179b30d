// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_TOOLS_PROGRAM_HPP
#define VELDRA_TESTS_TOOLS_PROGRAM_HPP

#include "support/names.hpp"
#include "support/temporary.hpp"

#include <nlohmann/json.hpp>

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tests {

/// What a run of the program gave.
struct Outcome {
  int status = -1;  ///< the exit status; -1 when a signal ended the program
  std::string out;
  std::string err;

  nlohmann::json json() const { return nlohmann::json::parse(out); }
};

/// A program that runs.
class Running {
 public:
  /// `texts` are the program and its arguments.
  Running(const std::string& folder, std::vector<std::string> texts);
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  /// Ends the program if it has not ended.
  ~Running();

  pid_t process() const { return process_; }
  void signal(int number) const;

  /// Whether it ends within that time.
  bool ends_within(std::chrono::milliseconds time);

  /// Waits for the end.
  Outcome outcome();

 private:
  TemporaryFolder outputs_;
  pid_t process_ = 0;
  int status_ = 0;
  bool ended_ = false;
};

/// Runs the built program in a folder of its own.
class ProgramTest : public testing::Test {
 protected:
  /// The configuration is that of the folder, whatever the tester has.
  ProgramTest();

  Outcome veldra(const std::vector<std::string>& arguments) const;

  /// Begins a run and does not wait for its end.
  std::unique_ptr<Running> start(const std::vector<std::string>& arguments) const;

  /// Runs a command of the shell, in which `veldra` is the program.
  Outcome shell(const std::string& command) const;

  /// Runs the program where no file may grow beyond so many half kilobytes.
  Outcome on_full_disk(int half_kilobytes, const std::string& arguments) const;
  std::unique_ptr<Running> start_shell(const std::string& command) const;

  /// The same for a run that must work.
  Outcome must(const std::vector<std::string>& arguments) const;

  /// The whole path of a file in the folder.
  std::string path(const std::string& file) const { return folder_ / file; }
  void write(const std::string& file, const std::string& text) const;
  std::string read(const std::string& file) const { return read_file(path(file)); }
  bool exists(const std::string& file) const { return file_exists(path(file)); }

  /// The names of all that is in the folder, or in one in it, in their order.
  std::vector<std::string> names(const std::string& folder = "") const;

  /// Opens a library of the folder, making it when it is missing.
  std::shared_ptr<veldra::Library> library(const std::string& file) const;

  std::string exported(const std::string& file) const { return must({"export", file}).out; }
  unsigned count(const std::string& file, const std::string& kind) const;

  /// Has the program run without what lets the superuser write every file; it remains the same
  /// user, who may read the program wherever it lies. Returns false where that cannot be done.
  bool lose_privileges();

 private:
  std::vector<std::string> program() const;

  TemporaryFolder folder_;
  std::vector<std::string> runner_;  ///< what runs the program, if anything
};

/// One sentence for people: the program's name first, one line, nothing of the runtime.
testing::Matcher<std::string> is_one_sentence();

/// Waits until something is so; returns false when that takes over 10 seconds.
bool wait_until(const std::function<bool()>& condition);

}  // namespace veldra_tests

#endif
