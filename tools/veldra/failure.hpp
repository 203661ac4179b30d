// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FAILURE_HPP
#define VELDRA_TOOL_FAILURE_HPP

#include <veldra/veldra.hpp>

#include <exception>
#include <stdexcept>
#include <string>

namespace veldra_tool {

/// Why a command did not work: one sentence for people.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Why a command did not work that is about the library that it works on, whose name the thrower
/// need not know: `working_on` makes a `Failure` of it.
class LibraryFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A failure that is about a file.
Failure failure_of(const std::string& file, const std::string& sentence);

// Of the exception that is being handled:

/// What is said of what went wrong with a library, without its name.
std::string sentence_of_error();

/// Whether the file is to blame, and not the disk, the memory or another program.
bool lies_in_the_file();

/// Whether waiting for others was in vain.
bool is_held_by_others();

/// What is said of a result code of SQLite.
std::string sentence_of_database(int result);

/// Throws the exception that is being handled again as a `Failure` that names the file. A
/// `Failure` passes as it is, and so do a lack of memory and what stops the program.
[[noreturn]] void rethrow_for(const std::string& file);

/// Runs work on a library file; what goes wrong comes out as a `Failure` that names the file.
template <class Work>
auto working_on(const std::string& file, Work work) {
  try {
    return work();
  } catch (...) {
    rethrow_for(file);
  }
}

/// A file name as it stands in messages.
std::string in_quotes(const std::string& text);

}  // namespace veldra_tool

#endif
