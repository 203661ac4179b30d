// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_JUDGEMENT_HPP
#define VELDRA_TESTS_PROGRAM_JUDGEMENT_HPP

#include "program/commands.hpp"
#include "program/faults.hpp"
#include "program/scene.hpp"

#include <ostream>
#include <string>
#include <vector>

namespace veldra_tests {

/// What a command does when nothing goes wrong.
struct Reference {
  explicit Reference(const Command& command);

  /// Whether the command leaves this file as it was.
  bool keeps(const std::string& name) const;

  Command command;
  Contents before;
  Contents after;
  Ending run;
};

/// What a run in which something went wrong may leave besides files.
enum class Leftovers {
  None,
  Journal,  ///< of a library that was there; without it, nobody could take back what was begun
  TemporaryFile,  ///< one, with its own journal; and that of a library that was there
};

/// The state that a scene is in: each file is as before the command, or as after it.
enum class State { Before, After, Unchanging, Neither };
void PrintTo(State state, std::ostream* stream);

/// Expects that every file in a scene is as before or as after the command, and that no other ones
/// are there than allowed; `excused` is one more, by its whole name or the last part. Gives the
/// state of the files that it changes.
State expect_whole_files(const Reference& reference, const Scene& scene, Leftovers leftovers,
                         const std::string& excused);

/// The file with what was edited that a run says it has kept, of which this expects that it is
/// there; empty if it says nothing of one.
std::string kept_text(const Ending& run, const Scene& scene);

/// Expects that the exit status is one of those that the program has, that what it says of the
/// state is true, and that what was printed goes with it.
void expect_true_status(const Reference& reference, const Ending& run, State state);

/// Expects that the next one who does the same, or looks at what is done, meets no trouble.
void expect_usable(const Reference& reference, const Scene& scene, State state);

}  // namespace veldra_tests

#endif
