// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/preload.hpp"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace veldra_tests {

namespace {

FaultPlan* current_plan = nullptr;

using Main = int (*)(int, char**, char**);
Main main_of_program = nullptr;

[[noreturn]] void give_up(const char* sentence) {
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, sentence, std::strlen(sentence));
  ::_exit(99);
}

FaultPlan* map_plan(const char* file) {
  const int descriptor = ::open(file, O_RDWR | O_CLOEXEC);
  void* const shared =
      ::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  ::close(descriptor);
  if (shared == MAP_FAILED) give_up("the plan of the faults cannot be read\n");
  return static_cast<FaultPlan*>(shared);
}

int main_with_faults(int count, char** values, char** environment) {
  if (const char* file = std::getenv(FaultPlan::variable)) {
    FaultPlan* const read = map_plan(file);
    const bool edits = count > 1 && std::strcmp(values[1], "edit") == 0;
    if (edits && !prepare_editor()) give_up("no process can be made for the editor\n");
    if (read->trouble != Trouble::NoMemory && !divert_file_calls()) {
      give_up("the system does not let calls be diverted\n");
    }
    current_plan = read;
  }
  return main_of_program(count, values, environment);
}

}  // namespace

FaultPlan* plan() { return current_plan; }

bool is_due(FaultPlan& plan) {
  const unsigned long call = ++plan.calls;
  if (plan.point == 0) return false;
  return plan.lasting ? call >= plan.point : call == plan.point;
}

}  // namespace veldra_tests

// What begins a program, and is told its main.
extern "C" __attribute__((visibility("default"))) int __libc_start_main(
    veldra_tests::Main main_of_program, int count, char** values, void (*begin)(), void (*end)(),
    void (*end_of_loader)(), void* end_of_stack) {
  using Start = int (*)(veldra_tests::Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
  veldra_tests::main_of_program = main_of_program;
  const auto start = reinterpret_cast<Start>(::dlsym(RTLD_NEXT, "__libc_start_main"));
  return start(veldra_tests::main_with_faults, count, values, begin, end, end_of_loader,
               end_of_stack);
}
