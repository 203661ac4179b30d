// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/path.hpp"

#include "failure.hpp"
#include "process/writing.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

namespace veldra_tool {

namespace {

std::string current_folder(const std::string& file) {
  const std::unique_ptr<char, decltype(&std::free)> folder(::getcwd(nullptr, 0), &std::free);
  if (folder) return folder.get();
  throw failure_of(file,
                   fmt::format("the current folder cannot be found: {}", text_of_error(errno)));
}

std::string with_single_slashes(const std::string& path) {
  std::string result;
  for (const char character : path) {
    if (character != '/' || result.empty() || result.back() != '/') result += character;
  }
  return result;
}

}  // namespace

std::string absolute_path(const std::string& file) {
  if (file.empty()) throw failure_of(file, "the name of the file is empty");
  const std::string path = file.front() == '/' ? file : current_folder(file) + "/" + file;
  return with_single_slashes(path);
}

std::string library_path(const std::string& file) {
  auto path = absolute_path(file);
  if (!is_utf8(path)) {
    throw failure_of(file, is_utf8(file) ? "the name of its folder must be UTF-8"
                                         : "the name of a library must be UTF-8");
  }
  const std::string name = name_in_folder(path);
  if (name.empty() || name == "." || name == "..") {
    throw failure_of(file, "this is the name of a folder");
  }
  require_short_path(file, path);
  return path;
}

void require_short_path(const std::string& file, const std::string& path) {
  constexpr std::size_t longest = 512 - 8;  // SQLite's limit, and room for the end of its journal's
  if (path.size() <= longest) return;
  throw failure_of(
      file,
      fmt::format("its path has more than {} bytes, which is too long for a library", longest));
}

std::string folder_of(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string name_in_folder(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string ending_of(const std::string& file) {
  constexpr std::size_t longest = 8;
  const std::string name = name_in_folder(file);
  const auto point = name.rfind('.');
  if (point == std::string::npos || point == 0) return "";
  std::string ending = kit::lower_case(name.substr(point + 1));
  const auto is_letter = [](char c) { return c >= 'a' && c <= 'z'; };
  const auto fits = [&](char c) { return is_letter(c) || (c >= '0' && c <= '9'); };
  const bool is_ending = !ending.empty() && ending.size() <= longest && is_letter(ending.front()) &&
                         std::all_of(ending.begin(), ending.end(), fits);
  return is_ending ? ending : "";
}

}  // namespace veldra_tool
