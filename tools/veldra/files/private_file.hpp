// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_PRIVATE_FILE_HPP
#define VELDRA_TOOL_FILES_PRIVATE_FILE_HPP

#include <string>

namespace veldra_tool {

/// A file for nobody but the user, in a folder of its own for what programs put beside it. Both go
/// with this unless they are kept.
///
/// The functions throw `Failure`.
class PrivateFile {
 public:
  /// In the folder for temporary files, with this text.
  PrivateFile(const std::string& name, const std::string& text);
  PrivateFile(const PrivateFile&) = delete;
  PrivateFile& operator=(const PrivateFile&) = delete;
  ~PrivateFile();

  const std::string& path() const { return path_; }

  /// Leaves the file where it is.
  void keep() noexcept { is_kept_ = true; }

 private:
  void make_folder();
  void fill(const std::string& text) const;

  std::string folder_;
  std::string path_;
  bool is_kept_ = false;
};

}  // namespace veldra_tool

#endif
