// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_TEMPORARY_FILE_HPP
#define VELDRA_TOOL_FILES_TEMPORARY_FILE_HPP

#include "process/interruption.hpp"

#include <sys/types.h>

#include <optional>
#include <string>

namespace veldra_tool {

/// The rights of a new file that asks for these.
mode_t rights_of_new_file(mode_t asked) noexcept;

/// A file that is filled under a name of its own, in the folder where it is to get its place, so
/// that nobody ever sees a part of it. Unless it gets its place it goes.
///
/// The functions throw `Failure`, which names the file as the user did.
class TemporaryFile {
 public:
  /// `file` is what the user named, `folder` where it belongs.
  TemporaryFile(std::string file, std::string folder);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  const std::string& path() const { return leftover_->path(); }
  int descriptor() const { return descriptor_; }

  /// Closes the descriptor; what is on its way to the disk is there then.
  void close();

  /// Puts the file into place where nothing is; returns false where something is.
  bool place(const std::string& path);

  /// Puts the file into place, whatever is there.
  void replace(const std::string& path);

  /// Why the folder could not be brought to the disk after that; 0 where it was.
  int folder_error() const { return folder_error_; }

 private:
  void settle() noexcept;
  [[noreturn]] void fail(const char* sentence, int error) const;

  std::string file_;
  std::string folder_;
  std::optional<Leftover> leftover_;
  int descriptor_ = -1;
  int folder_error_ = 0;
};

}  // namespace veldra_tool

#endif
