// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/confirmation.hpp"

#include "process/interruption.hpp"
#include "process/writing.hpp"
#include "text.hpp"

#include <unistd.h>

#include <cerrno>

namespace veldra_tool {

namespace {

/// A line of standard input. What comes without the end of a line is no answer.
std::string line_of_input() {
  std::string line;
  for (;;) {
    char character = '\0';
    const auto count = ::read(STDIN_FILENO, &character, 1);
    stop_if_asked();
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      say("\n");
      return "";
    }
    if (character == '\n') return line;
    line += character;
  }
}

}  // namespace

bool somebody_can_be_asked() noexcept {
  return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

bool confirmed(const std::string& question) {
  say(question + " [y/N] ");
  const std::string answer = trimmed(line_of_input());
  return answer == "y" || answer == "yes";
}

}  // namespace veldra_tool
