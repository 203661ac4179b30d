// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_OPENED_HPP
#define VELDRA_TOOL_FILES_OPENED_HPP

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace veldra_tool {

/// A descriptor that is closed with this; -1 for none.
class Opened {
 public:
  explicit Opened(int descriptor) : descriptor_(descriptor) {}
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;
  ~Opened() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  int get() const { return descriptor_; }

  /// Closes it; gives 0 or the number of the error.
  int close() {
    const int result = ::close(std::exchange(descriptor_, -1));
    return result == 0 || errno == EINTR ? 0 : errno;
  }

 private:
  int descriptor_;
};

}  // namespace veldra_tool

#endif
