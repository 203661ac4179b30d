// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROCESS_SPOOL_HPP
#define VELDRA_TOOL_PROCESS_SPOOL_HPP

#include <fmt/format.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace veldra_tool {

/// What a command has to say on standard output, kept until the command has ended and holds no
/// library any more. A little of it is kept in memory, more in a temporary file without a name.
class Spool {
 public:
  static constexpr std::size_t usual_memory = 1 << 20;

  explicit Spool(std::size_t memory = usual_memory) : memory_(memory) {}
  Spool(const Spool&) = delete;
  Spool& operator=(const Spool&) = delete;
  ~Spool();

  /// Throw `Failure` when the text cannot be kept.
  void write(std::string_view text);
  template <class... Args>
  void print(fmt::format_string<Args...> form, Args&&... values) {
    write(fmt::format(form, std::forward<Args>(values)...));
  }

  /// Forgets all of it.
  void clear() noexcept;

  bool empty() const { return kept_.empty() && file_ < 0; }

  /// Writes all of it to a descriptor. Gives 0, or the number of the error that ended it.
  int copy_to(int descriptor) const noexcept;

 private:
  void move_to_file();

  std::size_t memory_;
  std::string kept_;
  int file_ = -1;
};

}  // namespace veldra_tool

#endif
