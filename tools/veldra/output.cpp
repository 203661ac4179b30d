#include "output.hpp"

#include "failure.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace veldra_tool {

namespace {

Failure failure(const std::string& file, int error) {
  return Failure(fmt::format("{}: it cannot be written: {}", in_quotes(file),
                             std::strerror(error != 0 ? error : EIO)));
}

/// Devices and pipes are written in place; a new file takes the place of an old one when it is
/// complete.
bool replaceable(const std::string& file) {
  std::error_code error;
  const auto status = std::filesystem::symlink_status(file, error);
  return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

void write_file(const std::string& file, const std::string& text) {
  errno = 0;
  std::ofstream stream(file, std::ios::binary);
  stream.write(text.data(), static_cast<std::streamsize>(text.size()));
  stream.close();
  if (!stream) throw failure(file, errno);
}

}  // namespace

bool is_standard_output(const std::string& file) { return file.empty() || file == "-"; }

void write_output(Spool& output, const std::string& file, const std::string& text) {
  if (is_standard_output(file)) {
    output.write(text);
    return;
  }
  if (!replaceable(file)) return write_file(file, text);
  const std::string unfinished = file + ".unfinished";
  std::error_code error;
  try {
    write_file(unfinished, text);
    std::filesystem::rename(unfinished, file);
  } catch (const std::filesystem::filesystem_error& problem) {
    std::filesystem::remove(unfinished, error);
    throw failure(file, problem.code().value());
  } catch (const Failure&) {
    const int reason = errno;
    std::filesystem::remove(unfinished, error);
    throw failure(file, reason);
  }
}

Json written_to_json(const std::string& file, const std::string& format, const std::string& text) {
  Json json = Json::object();
  json["file"] = is_utf8(file) ? file : from_latin1(file);
  json["format"] = format;
  json["bytes"] = text.size();
  return json;
}

}  // namespace veldra_tool
