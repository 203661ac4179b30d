// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/output_place.hpp"

#include "failure.hpp"
#include "files/path.hpp"
#include "process/writing.hpp"

#include <fmt/format.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <memory>

namespace veldra_tool {

namespace {

constexpr int most_links = 40;

[[noreturn]] void fail(const std::string& file, const char* sentence, int error) {
  throw failure_of(file, fmt::format("{}: {}", sentence, text_of_error(error)));
}

std::string real_folder(const std::string& file, const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> folder(
      ::realpath(folder_of(path).c_str(), nullptr), &std::free);
  if (!folder) fail(file, "it cannot be made in its folder", errno);
  return folder.get();
}

bool is_in(const std::string& folder, const std::string& other) {
  return (folder + "/").compare(0, other.size() + 1, other + "/") == 0;
}

/// Shared memory is an ordinary file system.
bool is_special(const std::string& folder) {
  return is_in(folder, "/proc") || (is_in(folder, "/dev") && !is_in(folder, "/dev/shm"));
}

/// The number of a descriptor of this program that a name in a folder stands for, or -1.
int own_descriptor(const std::string& folder, const std::string& name) {
  const auto process = fmt::format("/proc/{}", ::getpid());
  if (folder != process + "/fd" && folder != fmt::format("{}/task/{}/fd", process, ::gettid())) {
    return -1;
  }
  int number = -1;
  const auto result = std::from_chars(name.data(), name.data() + name.size(), number);
  return result.ptr == name.data() + name.size() ? number : -1;
}

/// What a link says; empty where there is no link. A link that cannot be read is one all the same,
/// and would be replaced in place of what it leads to.
std::string target_of(const std::string& file, const std::string& path) {
  char target[PATH_MAX];
  const auto size = ::readlink(path.c_str(), target, sizeof target);
  if (size > 0) return std::string(target, static_cast<std::size_t>(size));
  if (size < 0 && errno != EINVAL && errno != ENOENT) {
    fail(file, "it cannot be found out where its name leads", errno);
  }
  return "";
}

}  // namespace

OutputPlace place_of_output(const std::string& file) {
  OutputPlace place;
  std::string path = absolute_path(file);
  for (int links = 0; links <= most_links; ++links) {
    const std::string name = name_in_folder(path);
    if (name.empty() || name == "." || name == "..") throw failure_of(file, "this is a folder");
    const std::string folder = real_folder(file, path);
    place.special = place.special || is_special(folder);
    place.descriptor = own_descriptor(folder, name);
    place.path = folder == "/" ? "/" + name : folder + "/" + name;
    place.names.push_back(name);
    const std::string target = target_of(file, place.path);
    if (target.empty()) return place;
    if (is_in(folder, "/proc")) {  // its links lead to what is open, whatever they say
      place.names.push_back(target);
      return place;
    }
    path = target.front() == '/' ? target : folder + "/" + target;
  }
  fail(file, "it cannot be written", ELOOP);
}

}  // namespace veldra_tool
