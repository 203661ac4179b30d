// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/preload.hpp"

#include <dlfcn.h>
#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

// A program that is started by one whose calls are diverted inherits the filter of the kernel, but
// not the handler of its signal, and could not even load its libraries. So the editor is what a
// process becomes that was there before: no fault is in it, and it ends with the program.

namespace veldra_tests {

namespace {

constexpr std::size_t most_of_order = 4096;

pid_t starter = 0;
int orders = -1;  ///< the end of a pipe to the starter

/// Reads words, each with a zero behind it, and one zero more; gives how many, or 0.
int read_order(int from, char (&order)[most_of_order], char* (&words)[64]) {
  std::size_t length = 0;
  while (length < 2 || order[length - 1] != '\0' || order[length - 2] != '\0') {
    const ssize_t count = ::read(from, order + length, sizeof order - length);
    if (count <= 0) return 0;
    length += static_cast<std::size_t>(count);
  }
  int count = 0;
  for (char* word = order; *word != '\0' && count != 63; word += std::strlen(word) + 1) {
    words[count++] = word;
  }
  words[count] = nullptr;
  return count;
}

[[noreturn]] void obey(int from) {
  static char order[most_of_order];
  static char* words[64];
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (read_order(from, order, words) != 0) {
    ::unsetenv("LD_PRELOAD");
    ::execvp(words[0], words);
  }
  ::_exit(127);
}

bool send_order(char* const words[]) {
  char order[most_of_order];
  std::size_t length = 0;
  for (; *words != nullptr; ++words) {
    const std::size_t size = std::strlen(*words) + 1;
    if (length + size + 1 > sizeof order) return false;
    std::memcpy(order + length, *words, size);
    length += size;
  }
  order[length++] = '\0';
  return ::write(orders, order, length) == static_cast<ssize_t>(length);
}

}  // namespace

bool prepare_editor() {
  int ends[2];
  if (::pipe(ends) != 0) return false;
  starter = ::fork();
  if (starter < 0) return false;
  if (starter == 0) {
    ::close(ends[1]);
    obey(ends[0]);
  }
  ::close(ends[0]);
  orders = ends[1];
  return true;
}

}  // namespace veldra_tests

extern "C" __attribute__((visibility("default"))) int posix_spawnp(
    pid_t* process, const char* file, const posix_spawn_file_actions_t* actions,
    const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {
  using Spawn = int (*)(pid_t*, const char*, const posix_spawn_file_actions_t*,
                        const posix_spawnattr_t*, char* const*, char* const*);
  if (veldra_tests::starter == 0) {
    const auto spawn = reinterpret_cast<Spawn>(::dlsym(RTLD_NEXT, "posix_spawnp"));
    return spawn(process, file, actions, attributes, arguments, environment);
  }
  *process = veldra_tests::starter;
  return veldra_tests::send_order(arguments) ? 0 : E2BIG;
}
