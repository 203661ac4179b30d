// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/editor.hpp"

#include "failure.hpp"
#include "process/interruption.hpp"
#include "process/writing.hpp"

#include <fmt/format.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <string_view>
#include <vector>

namespace veldra_tool {

namespace {

std::vector<std::string> words_in(const char* text) {
  std::vector<std::string> words;
  std::istringstream stream(text != nullptr ? text : "");
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

std::vector<std::string> editor_of_user() {
  for (const char* variable : {"VISUAL", "EDITOR"}) {
    auto words = words_in(std::getenv(variable));
    if (!words.empty()) return words;
  }
  throw Failure("neither $VISUAL nor $EDITOR names an editor");
}

/// Leaves signals of the keyboard to the editor, as long as it lives.
class KeyboardPause {
 public:
  KeyboardPause() noexcept {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGINT, &ignore, &interrupt_);
    ::sigaction(SIGQUIT, &ignore, &quit_);
  }
  KeyboardPause(const KeyboardPause&) = delete;
  KeyboardPause& operator=(const KeyboardPause&) = delete;
  ~KeyboardPause() {
    ::sigaction(SIGINT, &interrupt_, nullptr);
    ::sigaction(SIGQUIT, &quit_, nullptr);
  }

 private:
  struct sigaction interrupt_ {};
  struct sigaction quit_ {};
};

/// What a program gets that is started: signals do by default what they do.
class Attributes {
 public:
  Attributes() noexcept {
    ::posix_spawnattr_init(&attributes_);
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGQUIT, SIGPIPE}) sigaddset(&signals, signal);
    ::posix_spawnattr_setsigdefault(&attributes_, &signals);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { ::posix_spawnattr_destroy(&attributes_); }

  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

pid_t start(std::vector<std::string>& words) {
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (auto& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const Attributes attributes;
  pid_t process = 0;
  const int error = ::posix_spawnp(&process, arguments[0], nullptr, attributes.get(),
                                   arguments.data(), ::environ);
  if (error == 0) return process;
  throw Failure(fmt::format("the editor {} cannot be started: {}", in_quotes(words.front()),
                            text_of_error(error)));
}

/// The status of a process that has ended. One that shall stop before is told so.
int wait_for(pid_t process) {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) return -1;
    if (stop_asked()) ::kill(process, SIGTERM);
  }
  return status;
}

}  // namespace

void edit_file(const std::string& path) {
  auto words = editor_of_user();
  const auto editor = in_quotes(words.front());
  words.push_back(path);
  const KeyboardPause pause;
  const int status = wait_for(start(words));
  stop_if_asked();
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return;
  throw Failure(WIFEXITED(status)
                    ? fmt::format("the editor {} ended with status {}", editor, WEXITSTATUS(status))
                    : fmt::format("the editor {} was ended", editor));
}

}  // namespace veldra_tool
