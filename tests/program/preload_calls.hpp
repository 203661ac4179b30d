// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_PROGRAM_PRELOAD_CALLS_HPP
#define VELDRA_TESTS_PROGRAM_PRELOAD_CALLS_HPP

#include "program/preload_system.hpp"

namespace veldra_tests {

/// What kind of thing a call into the file system does.
enum class Group {
  Open,
  Read,
  Write,
  Sync,
  Truncate,
  Remove,
  Rename,  // and linking
  Lock,
  Look,  // at what a name means: status, access, links
  CurrentFolder,
  Change,  // of mode, owner and times
  Close,
  MakeFolder,
  Duplicate,  // never fails, and is not counted
  Sleep       // the same
};

/// Where the arguments of a call are; -1 is nowhere.
struct CallForm {
  long number;
  Group group;
  int descriptor;  ///< of a file
  int folder;  ///< a descriptor that `path` begins at; a path without one, at the current folder
  int path;
  int second_folder;
  int second_path;
};

/// All that are looked at.
extern const CallForm call_forms[];
extern const unsigned call_form_count;

const CallForm* form_of(long number);

/// The error that this call gives instead of `wanted`; 0 if it cannot give any such.
int possible_error(const CallForm& form, const SystemCall& call, int wanted);

/// What the call is about, as far as it has it.
const char* path_of(const CallForm& form, const SystemCall& call);
const char* second_path_of(const CallForm& form, const SystemCall& call);
int descriptor_of(const CallForm& form, const SystemCall& call);

bool is_file_lock(const SystemCall& call);
bool makes_file(const SystemCall& call);
bool empties_file(const SystemCall& call);

}  // namespace veldra_tests

#endif
