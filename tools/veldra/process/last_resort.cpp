// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/last_resort.hpp"

#include "process/status.hpp"
#include "process/writing.hpp"

#include <unistd.h>

#include <exception>
#include <new>

namespace veldra_tool {

namespace {

/// Without memory not even an exception can be made, and there is none to be looked at.
bool memory_is_short() noexcept {
  try {
    const auto error = std::current_exception();
    if (error) std::rethrow_exception(error);
  } catch (const std::bad_alloc&) {
    return true;
  } catch (...) {
    return false;
  }
  return true;
}

[[noreturn]] void end_with_a_sentence() noexcept {
  say(memory_is_short() ? no_memory : unexpected);
  ::_exit(static_cast<int>(Status::Failed));
}

void prepare() { std::set_terminate(end_with_a_sentence); }

/// Libraries prepare themselves before `main`, and memory may run out there already. What this list
/// names is called before all of that.
[[gnu::section(".preinit_array"), gnu::used]] void (*const before_all_others)() = prepare;

}  // namespace

}  // namespace veldra_tool
