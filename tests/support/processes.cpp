// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/processes.hpp"

#include "support/database.hpp"
#include "support/thrown.hpp"

#include <dirent.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace veldra_tests {

class Pipe {
 public:
  Pipe() {
    if (::pipe(ends_) != 0) throw std::runtime_error("no pipe");
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    close_end(0);
    close_end(1);
  }

  void close_reading() { close_end(0); }
  void close_writing() { close_end(1); }

  // Until every process has closed its writing end.
  std::string read_all() {
    std::string text;
    char buffer[1024];
    ssize_t size;
    while ((size = ::read(ends_[0], buffer, sizeof buffer)) > 0) {
      text.append(buffer, static_cast<std::size_t>(size));
    }
    return text;
  }

  // Waits for a byte; false when every process has closed its writing end before.
  bool read_byte() {
    char byte;
    return ::read(ends_[0], &byte, 1) == 1;
  }

  bool has_bytes() const {
    pollfd end = {ends_[0], POLLIN, 0};
    return ::poll(&end, 1, 0) == 1 && (end.revents & POLLIN) != 0;
  }

  void write(const std::string& text) {
    if (::write(ends_[1], text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
      throw std::runtime_error("cannot write to a pipe");
    }
  }

 private:
  void close_end(int end) {
    if (ends_[end] >= 0) ::close(ends_[end]);
    ends_[end] = -1;
  }

  int ends_[2];
};

namespace {

pid_t fork_process() {
  const pid_t process = ::fork();
  if (process < 0) throw std::runtime_error("no process");
  return process;
}

std::string result_of(const std::function<std::string()>& call) {
  std::string result;
  const Thrown thrown = thrown_by([&] { result = call(); });
  if (thrown == "") return result;
  std::ostringstream text;
  text << "thrown: " << thrown;
  return text.str();
}

// Nothing may escape from a forked process into the test program that it is a copy of, hence the
// noexcept here and below.

// A process that runs a call once `start` is closed for writing.
class WaitingProcess {
 public:
  WaitingProcess(Pipe& start, const std::function<std::string()>& call) : process_(fork_process()) {
    if (process_ == 0) run(start, call);
    result_.close_writing();
  }

  std::string result() {
    const std::string text = result_.read_all();
    int status = 0;
    ::waitpid(process_, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? text : "died";
  }

 private:
  [[noreturn]] void run(Pipe& start, const std::function<std::string()>& call) noexcept {
    start.close_writing();
    start.read_all();
    result_.write(result_of(call));
    ::_exit(0);
  }

  Pipe result_;
  pid_t process_;
};

// Tells when it holds the lock, and once more before it gives the lock up: whoever was waiting for
// that finds that it was told.
[[noreturn]] void hold_lock(const std::string& path, const std::string& begin, int milliseconds,
                            Pipe& told) noexcept {
  const Thrown thrown = thrown_by([&] {
    PlainDatabase database(path);
    database.execute(begin);
    told.write("b");
    ::usleep(static_cast<useconds_t>(milliseconds) * 1000);
    told.write("e");
    database.execute("COMMIT");
  });
  ::_exit(thrown == "" ? 0 : 1);
}

bool is_same_file(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

// How often this process holds a file open. Asks each descriptor, because a bare system need not
// have a list of them.
std::size_t times_open(const std::string& path) {
  struct stat file;
  if (::stat(path.c_str(), &file) != 0) return 0;
  std::size_t times = 0;
  for (int descriptor = 0; descriptor != 1024; ++descriptor) {
    struct stat opened;
    if (::fstat(descriptor, &opened) == 0 && is_same_file(file, opened)) ++times;
  }
  return times;
}

}  // namespace

std::vector<std::string> run_at_once(const std::vector<std::function<std::string()>>& calls) {
  Pipe start;
  std::vector<std::unique_ptr<WaitingProcess>> processes;
  for (const auto& call : calls) processes.emplace_back(new WaitingProcess(start, call));
  start.close_writing();
  std::vector<std::string> results;
  for (const auto& process : processes) results.push_back(process->result());
  return results;
}

std::string run_without_privileges(const std::function<std::string()>& call) {
  const auto call_as_nobody = [&]() -> std::string {
    const uid_t nobody = 65534;
    if (::geteuid() == 0 && ::setuid(nobody) != 0) return "still the superuser";
    return call();
  };
  return run_at_once({call_as_nobody}).front();
}

LockingProcess::LockingProcess(const std::string& path, const std::string& begin, int milliseconds)
    : told_(new Pipe), process_(fork_process()) {
  if (process_ == 0) hold_lock(path, begin, milliseconds, *told_);
  told_->close_writing();
  if (told_->read_byte()) return;
  ::waitpid(process_, nullptr, 0);
  throw std::runtime_error("another process cannot execute " + begin);
}

LockingProcess::~LockingProcess() {
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

bool LockingProcess::time_is_over() const { return told_->has_bytes(); }

std::vector<std::string> open_files(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), ::closedir);
  if (!entries) throw std::runtime_error("no folder " + folder);
  std::vector<std::string> names;
  while (const dirent* entry = ::readdir(entries.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..")
      names.insert(names.end(), times_open(folder + "/" + name), name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace veldra_tests
