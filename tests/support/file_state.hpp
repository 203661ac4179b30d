// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_FILE_STATE_HPP
#define VELDRA_TESTS_SUPPORT_FILE_STATE_HPP

#include <string>

namespace veldra_tests {

/// The bytes of a file and when they were last written, to see whether somebody writes it:
///
///     const FileState before(path);
///     open();
///     EXPECT_TRUE(before == FileState(path));
///
/// The comparison gives no text on purpose: the bytes of two databases tell nobody anything.
class FileState {
 public:
  explicit FileState(const std::string& path);

  bool operator==(const FileState& other) const;

 private:
  std::string bytes_;
  long long written_;  // in nanoseconds
};

}  // namespace veldra_tests

#endif
