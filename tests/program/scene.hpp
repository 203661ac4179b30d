// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_SCENE_HPP
#define VELDRA_TESTS_PROGRAM_SCENE_HPP

#include "program/faults.hpp"
#include "program/process.hpp"
#include "support/names.hpp"
#include "support/temporary.hpp"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tests {

using Arguments = std::vector<std::string>;

/// What the files of a folder hold, by name: of a library its rows, of everything else its mode and
/// bytes. What is wrong with a library comes first in its text.
using Contents = std::map<std::string, std::string>;

/// A folder with what a librarian has:
///
///  - the libraries office.lib and site.lib; walls.json and glass.idf, which can be imported;
///  - old.json and old.svg, from an earlier time; the links link.json to the one and link to
///    office.lib;
///  - files of others, whose names are like those that programs give their own;
///  - much.lib, which is exported as more text than the program keeps in memory, if `arguments`
///  name
///    it.
///
/// Temporary files of the program lie in the folder below it, `temporary`.
class Scene {
 public:
  explicit Scene(const Arguments& arguments = {});

  const std::string& path() const { return folder_.path(); }

  /// Runs the program, with a fault if there is a plan.
  Ending run(const Arguments& arguments, const SharedPlan* plan = nullptr) const;
  std::unique_ptr<Process> start(const Arguments& arguments,
                                 const SharedPlan* plan = nullptr) const;

  /// Removes a file, if it is there.
  void remove(const std::string& name) const;

  /// The names of all files, those in `temporary` with its name before.
  std::vector<std::string> names() const;

  /// Plays journals back, as the next one does who opens the libraries.
  Contents contents() const;

 private:
  TemporaryFolder folder_;
};

/// Whether the name is that of a library.
bool is_library(const std::string& name);

}  // namespace veldra_tests

#endif
