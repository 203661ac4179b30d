// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_OUTPUT_FILE_HPP
#define VELDRA_TOOL_FILES_OUTPUT_FILE_HPP

#include "files/output_place.hpp"
#include "host.hpp"
#include "json.hpp"
#include "process/spool.hpp"

#include <sys/stat.h>

#include <cstddef>
#include <string>

namespace veldra_tool {

/// Whether an output of that name goes to standard output.
bool is_standard_output(const std::string& file);

/// What a command was told to write to, other than a library.
///
/// A regular file is replaced as a whole, or stays as it is; one that is there already only where
/// that is wanted, and never a library or what belongs to one. What is no regular file is written
/// as it is.
class OutputFile {
 public:
  /// `input` is the library that is read. Throws `Failure` when the file must not be written.
  OutputFile(std::string file, const std::string& input, bool replace);

  /// Writes the text, or keeps it for standard output where the name is empty or "-". No library
  /// may be open. Throws `Failure`.
  void write(Host& host, const std::string& text) const;

  /// The same with a text that need not be in memory, which must not be for standard output.
  void write(Host& host, const Spool& text) const;

 private:
  bool is_there(const OutputPlace& place, struct stat& there) const;
  OutputPlace require_permission() const;
  void require_no_library(const OutputPlace& place, const struct stat& there) const;
  void write_in_place(const OutputPlace& place, const Spool& text) const;
  void replace_whole(const OutputPlace& place, Host& host, const Spool& text) const;
  [[noreturn]] void fail(const std::string& sentence) const;
  [[noreturn]] void fail_writing(int error) const;

  std::string file_;
  bool replace_;
  bool has_input_ = false;
  struct stat input_ {};
};

/// Throws `Failure` when standard output is a library or what belongs to one.
void require_no_library_as_standard_output();

/// What a script is told of a text of so many bytes that was written into a file.
Json written_to_json(const std::string& file, const std::string& format, std::size_t bytes);

}  // namespace veldra_tool

#endif
