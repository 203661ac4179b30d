// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/sweep.hpp"

#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>

namespace veldra_tests {

namespace {

constexpr unsigned sample = 4;
constexpr unsigned all = 1000;
constexpr bool from_there_on = true;

TEST(ProgramErrors, of_one_call_leave_everything_whole) {
  sweep(commands(), {Trouble::Error, EIO}, sample, "program: errors of one call");
}

TEST(ProgramErrors, of_all_calls_leave_everything_whole) {
  sweep(commands(), {Trouble::Error, EIO, from_there_on}, sample,
        "program: errors of all calls from one on");
}

/// What cannot be looked at is not taken for something that is not there.
TEST(ProgramErrors, of_looking_leave_everything_whole) {
  std::vector<Command> replacing;
  for (const Command& command : writing_commands()) {
    if (command.arguments.back() == "--force") replacing.push_back(command);
  }
  for (const long call : {SYS_newfstatat, SYS_readlink}) {
    sweep(replacing, {Trouble::Error, EIO, !from_there_on, call}, all,
          call == SYS_readlink ? "program: errors of reading links"
                               : "program: errors of looking at files");
  }
}

TEST(ProgramErrors, of_locks_leave_everything_whole) {
  const Command removal = command_named("remove");
  sweep({removal}, {Trouble::Error, EIO, !from_there_on, SYS_fcntl}, all,
        "program: errors of locks");
}

TEST(ProgramErrors, of_rights_leave_everything_whole) {
  sweep(commands(), {Trouble::Error, EACCES}, sample, "program: one call without the right");
  sweep(commands(), {Trouble::Error, EACCES, from_there_on}, sample,
        "program: all calls from one on without the right");
}

TEST(ProgramErrors, of_space_leave_everything_whole) {
  sweep(writing_commands(), {Trouble::Error, ENOSPC}, sample, "program: one call without space");
  sweep(writing_commands(), {Trouble::Error, ENOSPC, from_there_on}, sample,
        "program: all calls from one on without space");
}

TEST(ProgramErrors, of_a_full_disk_leave_everything_whole) {
  sweep(writing_commands(), {Trouble::FullDisk}, sample, "program: full disks");
}

TEST(ProgramErrors, of_calls_that_the_system_does_not_have_are_none) {
  sweep({command_named("create"), command_named("import into a new library")},
        {Trouble::Error, ENOSYS, from_there_on}, all, "program: without exclusive renaming");
  sweep({command_named("export of much")}, {Trouble::Error, EOPNOTSUPP, from_there_on}, all,
        "program: without unnamed files");
}

TEST(ProgramErrors, of_short_writes_are_none) {
  sweep(commands(), {Trouble::ShortWrite}, sample, "program: short writes");
}

}  // namespace

}  // namespace veldra_tests
