#include "opening.hpp"

#include "failure.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string_view>
#include <vector>

namespace veldra_tool {

namespace {

constexpr std::string_view database_mark{"SQLite format 3\0", 16};
constexpr std::string_view library_mark = "schema_version";

Failure failure(const std::string& file, const std::string& text) {
  return Failure(fmt::format("{}: {}", in_quotes(file), text));
}

/// An absolute path without "//", so that no name means anything but a file of that name.
veldra::String plain_path(const std::string& file) {
  if (!is_utf8(file)) throw failure(file, "the name of the file is not UTF-8");
  return library_text(std::filesystem::absolute(file).lexically_normal().string());
}

/// Whether a text occurs in a stream, which is read in blocks.
bool contains(std::istream& stream, std::string_view wanted) {
  const std::boyer_moore_horspool_searcher searcher(wanted.begin(), wanted.end());
  std::vector<char> block(1 << 20);
  std::size_t kept = 0;
  while (stream) {
    stream.read(block.data() + kept, static_cast<std::streamsize>(block.size() - kept));
    const auto end = block.begin() + static_cast<std::ptrdiff_t>(kept) + stream.gcount();
    if (std::search(block.begin(), end, searcher) != end) return true;
    kept = std::min(wanted.size() - 1, static_cast<std::size_t>(end - block.begin()));
    std::copy(end - static_cast<std::ptrdiff_t>(kept), end, block.begin());
  }
  return false;
}

/// Opening an empty database gives it the tables of a library, so what is no library must be
/// kept from being opened.
void require_library(const std::string& file) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (status.type() == std::filesystem::file_type::not_found) {
    throw failure(file, "there is no such file");
  }
  if (status.type() == std::filesystem::file_type::directory)
    throw failure(file, "this is a folder");
  if (!std::filesystem::is_regular_file(status)) throw failure(file, "this is not a file");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw failure(file, fmt::format("it cannot be read: {}", std::strerror(errno)));
  char head[database_mark.size()]{};
  stream.read(head, sizeof head);
  const bool database = std::string_view(head, sizeof head) == database_mark;
  if (!database || !contains(stream, library_mark))
    throw failure(file, "this is not a veldra library");
}

}  // namespace

std::shared_ptr<veldra::Library> open_library(const std::string& file, Access access) {
  require_library(file);
  return working_on(file, [&] {
    auto library = veldra::Library::open(plain_path(file), access == Access::Read);
    if (access == Access::Write && library->readOnly()) {
      throw failure(file, "the library can only be read");
    }
    return library;
  });
}

std::shared_ptr<veldra::Library> create_library(const std::string& file, veldra::Unit unit,
                                                const std::string& guid) {
  if (file_exists(file)) throw failure(file, "there is a file of that name already");
  const auto path = plain_path(file);
  const auto folder = std::filesystem::absolute(file).parent_path();
  if (::access(folder.c_str(), W_OK) != 0) {
    throw failure(file, fmt::format("it cannot be made in its folder: {}", std::strerror(errno)));
  }
  return working_on(file, [&] { return veldra::Library::create(path, unit, library_text(guid)); });
}

std::shared_ptr<veldra::Library> create_staging_library(veldra::Unit unit) {
  auto library = veldra::Library::create(":memory:", unit, "");
  library->purge<veldra::MaterialType>();
  return library;
}

bool same_file(const std::string& left, const std::string& right) {
  std::error_code error;
  return std::filesystem::equivalent(left, right, error);
}

bool file_exists(const std::string& file) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(file, error));
}

}  // namespace veldra_tool
