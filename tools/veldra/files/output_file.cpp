// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/output_file.hpp"

#include "failure.hpp"
#include "files/library_marks.hpp"
#include "files/opened.hpp"
#include "files/path.hpp"
#include "files/temporary_file.hpp"
#include "process/interruption.hpp"
#include "process/writing.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace veldra_tool {

namespace {

bool same_file(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool is_replaced(const OutputPlace& place, const struct stat& there) {
  return S_ISREG(there.st_mode) && !place.special;
}

/// Its descriptor may be one that cannot be read.
int is_database(const OutputPlace& place) {
  if (place.descriptor < 0) return begins_as_database(place.path);
  const int begins = begins_as_database(place.descriptor);
  return begins >= 0 ? begins
                     : begins_as_database(fmt::format("/proc/self/fd/{}", place.descriptor));
}

/// A pipe waits here for somebody who reads it.
int open_in_place(const OutputPlace& place) {
  if (place.descriptor >= 0) return ::fcntl(place.descriptor, F_DUPFD_CLOEXEC, 3);
  for (;;) {
    // What somebody else has open is only added to.
    const int descriptor = ::open(place.path.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC);
    if (descriptor >= 0 || errno != EINTR) return descriptor;
    stop_if_asked();
  }
}

/// The file gets the rights and, as far as that is allowed, the owner of the one that it replaces.
int take_over_rights(int descriptor, const struct stat* old) {
  if (old == nullptr) return ::fchmod(descriptor, rights_of_new_file(0666));
  mode_t rights = old->st_mode & 07777;
  if (::fchown(descriptor, old->st_uid, old->st_gid) != 0) {
    rights &= 0777;  // what is run with the owner's rights must remain the owner's
    [[maybe_unused]] const int ignored = ::fchown(descriptor, static_cast<uid_t>(-1), old->st_gid);
  }
  return ::fchmod(descriptor, rights);
}

}  // namespace

bool is_standard_output(const std::string& file) { return file.empty() || file == "-"; }

OutputFile::OutputFile(std::string file, const std::string& input, bool replace)
    : file_(std::move(file)), replace_(replace) {
  if (is_standard_output(file_)) return;
  has_input_ = ::stat(absolute_path(input).c_str(), &input_) == 0;
  require_permission();
}

void OutputFile::write(Host& host, const std::string& text) const {
  if (is_standard_output(file_)) return host.output.write(text);
  Spool spool(text.size());
  spool.write(text);
  write(host, spool);
}

void OutputFile::write(Host& host, const Spool& text) const {
  const auto place = require_permission();
  struct stat there {};
  if (is_there(place, there) && !is_replaced(place, there)) return write_in_place(place, text);
  if (place.special) fail_writing(ENOENT);  // nothing new is made there
  replace_whole(place, host, text);
}

/// What cannot be looked at may be there, and be anything.
bool OutputFile::is_there(const OutputPlace& place, struct stat& there) const {
  const int result = place.descriptor >= 0 ? ::fstat(place.descriptor, &there)
                                           : ::stat(place.path.c_str(), &there);
  if (result == 0) return true;
  if (errno == ENOENT || errno == EBADF) return false;
  fail(fmt::format("it cannot be looked at: {}", text_of_error(errno)));
}

OutputPlace OutputFile::require_permission() const {
  const auto place = place_of_output(file_);
  if (std::any_of(place.names.begin(), place.names.end(), is_companion_name)) {
    fail("this is the name of what a library keeps beside it");
  }
  struct stat there {};
  if (!is_there(place, there)) return place;
  if (S_ISDIR(there.st_mode)) fail("this is a folder");
  if (S_ISSOCK(there.st_mode) && place.descriptor < 0) fail("this is a socket");
  if (S_ISREG(there.st_mode)) require_no_library(place, there);
  if (!replace_ && (is_replaced(place, there) || S_ISBLK(there.st_mode))) {
    fail("there is a file of that name already; --force replaces it");
  }
  return place;
}

void OutputFile::require_no_library(const OutputPlace& place, const struct stat& there) const {
  if (has_input_ && same_file(there, input_)) fail("this is the library that is read");
  const int begins = is_database(place);
  if (begins < 0) {
    fail(fmt::format("it may be a library, and cannot be read: {}", text_of_error(errno)));
  }
  if (begins > 0) fail("this is a library or another database, which is never written over");
}

void OutputFile::write_in_place(const OutputPlace& place, const Spool& text) const {
  Opened opened(open_in_place(place));
  if (opened.get() < 0) fail_writing(errno);
  tell_when_stopped(fmt::format("{} has got a part of the output", in_quotes(file_)));
  int error = text.copy_to(opened.get());
  if (error == EINTR) throw Stopped();
  if (error == 0) error = opened.close();
  if (error != 0) fail_writing(error);
}

void OutputFile::replace_whole(const OutputPlace& place, Host& host, const Spool& text) const {
  TemporaryFile temporary(file_, folder_of(place.path));
  struct stat old {};
  const bool is_old = is_there(place, old);
  const int error = text.copy_to(temporary.descriptor());
  if (error == EINTR) throw Stopped();
  if (error != 0) fail_writing(error);
  if (take_over_rights(temporary.descriptor(), is_old ? &old : nullptr) != 0) fail_writing(errno);
  temporary.close();
  stop_if_asked();
  require_permission();  // writing may have taken long
  if (replace_) {
    temporary.replace(place.path);
  } else if (!temporary.place(place.path)) {
    fail("there is a file of that name already; --force replaces it");
  }
  host.done = true;
  if (temporary.folder_error() != 0) host.doubt(file_, temporary.folder_error());
}

void OutputFile::fail(const std::string& sentence) const { throw failure_of(file_, sentence); }

void OutputFile::fail_writing(int error) const {
  fail(fmt::format("it cannot be written: {}", text_of_error(error)));
}

void require_no_library_as_standard_output() {
  struct stat there {};
  if (::fstat(STDOUT_FILENO, &there) != 0 || !S_ISREG(there.st_mode)) return;
  OutputPlace place;
  place.descriptor = STDOUT_FILENO;
  char target[4096];
  const auto size = ::readlink("/proc/self/fd/1", target, sizeof target);
  const bool companion =
      size > 0 && is_companion_name(std::string(target, static_cast<std::size_t>(size)));
  if (!companion && is_database(place) <= 0) return;
  throw Failure("standard output is a library, or what one keeps beside it");
}

Json written_to_json(const std::string& file, const std::string& format, std::size_t bytes) {
  Json json = Json::object();
  json["file"] = in_utf8(file);
  json["format"] = format;
  json["bytes"] = bytes;
  return json;
}

}  // namespace veldra_tool
