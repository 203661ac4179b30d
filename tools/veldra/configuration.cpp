// SPDX-License-Identifier: GPL-2.0-or-later
#include "configuration.hpp"

#include "failure.hpp"
#include "files/reading.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <set>
#include <sstream>

namespace veldra_tool {

namespace {

constexpr std::size_t most_bytes = 1 << 16;

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

/// Empty where the environment leads to none. A folder that is not named from the root is no
/// answer.
std::string path_of_configuration() {
  const std::string base = environment("XDG_CONFIG_HOME");
  if (!base.empty() && base.front() == '/') return base + "/veldra/config";
  const std::string home = environment("HOME");
  return home.empty() ? "" : home + "/.config/veldra/config";
}

/// A home may be named that is none, as for users who never log in.
bool is_missing(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

/// `#` begins a comment where nothing or a blank is before it.
std::string without_comment(const std::string& line) {
  for (std::size_t i = line.find('#'); i != std::string::npos; i = line.find('#', i + 1)) {
    if (i == 0 || line[i - 1] == ' ' || line[i - 1] == '\t') return line.substr(0, i);
  }
  return line;
}

/// Reads the lines of one file.
class Reader {
 public:
  explicit Reader(const std::string& file) : file_(file) {}

  void read(const std::string& line) {
    ++number_;
    if (!is_utf8(line) || line.find('\0') != std::string::npos) fail("this is not UTF-8");
    const std::string text = trimmed(without_comment(line));
    if (text.empty()) return;
    const auto sign = text.find('=');
    const std::string key = trimmed(text.substr(0, sign));
    if (sign == std::string::npos || key.empty()) {
      fail(fmt::format("{} is not 'key = value'", in_quotes(text)));
    }
    set(key, trimmed(text.substr(sign + 1)));
  }

  const Configuration& result() const { return result_; }

 private:
  void set(const std::string& key, const std::string& value) {
    if (key != "backup") {
      fail(fmt::format("there is no key {}; there is 'backup'", in_quotes(key)));
    }
    if (value.empty()) fail(fmt::format("{} has no value", in_quotes(key)));
    if (!keys_.insert(key).second) fail(fmt::format("{} stands there twice", in_quotes(key)));
    result_.backup = value;
  }

  [[noreturn]] void fail(const std::string& sentence) const {
    throw failure_of(file_, fmt::format("line {}: {}", number_, sentence));
  }

  const std::string& file_;
  std::size_t number_ = 0;
  std::set<std::string> keys_;
  Configuration result_;
};

}  // namespace

Configuration configuration_in(const std::string& text, const std::string& file) {
  Reader reader(file);
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) reader.read(line);
  return reader.result();
}

Configuration read_configuration() {
  const std::string path = path_of_configuration();
  if (path.empty() || is_missing(path)) return {};
  return configuration_in(content_of(path, most_bytes), path);
}

std::string with_home(const std::string& path) {
  if (path != "~" && path.compare(0, 2, "~/") != 0) return path;
  const std::string home = environment("HOME");
  if (home.empty()) throw failure_of(path, "nobody knows the home of the user: HOME is not set");
  return home + path.substr(1);
}

}  // namespace veldra_tool
