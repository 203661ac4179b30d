// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/preload_system.hpp"

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

// A filter of the kernel raises SIGSYS in place of a call; the one instruction that is let through
// is the one below, which the handler of that signal uses.
asm(R"(
    .text
    .hidden veldra_perform
    .hidden veldra_performed
    .global veldra_perform
    .global veldra_performed
    .type veldra_perform, @function
veldra_perform:
    mov %rdi, %rax
    mov %rsi, %rdi
    mov %rdx, %rsi
    mov %rcx, %rdx
    mov %r8, %r10
    mov %r9, %r8
    mov 8(%rsp), %r9
    syscall
veldra_performed:
    ret
    .size veldra_perform, .-veldra_perform
)");

extern "C" {
long veldra_perform(long number, long, long, long, long, long, long);
extern const char veldra_performed[];
}

namespace veldra_tests {

namespace {

constexpr unsigned most_numbers = 120;

long (*handler_of_calls)(const SystemCall&) = nullptr;

void on_diverted(int, siginfo_t*, void* context) {
  const int error = errno;
  auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
  const SystemCall call{registers[REG_RAX],
                        {registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                         registers[REG_R10], registers[REG_R8], registers[REG_R9]}};
  registers[REG_RAX] = handler_of_calls(call);
  errno = error;
}

constexpr sock_filter load(std::size_t offset) {
  return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
}

constexpr sock_filter result(std::uint32_t action) { return BPF_STMT(BPF_RET | BPF_K, action); }

/// Goes on with the next step when the loaded value is this one, or skips some.
constexpr sock_filter expect(std::uint32_t value, std::uint8_t otherwise_skip) {
  return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, otherwise_skip);
}

bool install_filter(const long* numbers, unsigned count) {
  const auto place = reinterpret_cast<std::uintptr_t>(veldra_performed);
  const auto pointer = offsetof(seccomp_data, instruction_pointer);
  sock_filter steps[2 * most_numbers + 16];
  unsigned short length = 0;
  const auto add = [&](const sock_filter& step) { steps[length++] = step; };
  add(load(pointer));
  add(expect(static_cast<std::uint32_t>(place), 3));
  add(load(pointer + sizeof(std::uint32_t)));
  add(expect(static_cast<std::uint32_t>(place >> 32), 1));
  add(result(SECCOMP_RET_ALLOW));
  add(load(offsetof(seccomp_data, nr)));
  for (unsigned i = 0; i != count; ++i) {
    add(expect(static_cast<std::uint32_t>(numbers[i]), 1));
    add(result(SECCOMP_RET_TRAP));
  }
  add(result(SECCOMP_RET_ALLOW));
  const sock_fprog program{length, steps};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
}

}  // namespace

long perform(const SystemCall& call) {
  const long* a = call.arguments;
  return veldra_perform(call.number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

bool divert_calls(const long* numbers, unsigned count, long (*handler)(const SystemCall&)) {
  if (count > most_numbers) return false;
  handler_of_calls = handler;
  struct sigaction action {};
  action.sa_sigaction = on_diverted;
  // A handler of the program that comes in between makes calls as well.
  action.sa_flags = SA_SIGINFO | SA_NODEFER | SA_RESTART;
  return ::sigaction(SIGSYS, &action, nullptr) == 0 && install_filter(numbers, count);
}

}  // namespace veldra_tests
