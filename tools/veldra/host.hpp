// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_HOST_HPP
#define VELDRA_TOOL_HOST_HPP

#include "files/backup.hpp"
#include "process/spool.hpp"
#include "process/status.hpp"

#include <memory>
#include <string>

namespace CLI {
class App;
}

namespace veldra_tool {

/// The program: its arguments, and what the command that they name leaves behind.
struct Host {
  Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  ~Host();

  bool has_command(const std::string& name) const;

 private:
  // What reads the arguments takes the compiler more time than most of what is done with them, so
  // only those see it who name them.
  std::unique_ptr<CLI::App> app_;

 public:
  CLI::App& arguments;
  Status status = Status::Done;
  Spool output;       ///< for standard output
  std::string notes;  ///< for standard error, whole lines
  Backup backup;      ///< of the library that the command changes

  /// That something was done that no failure afterwards undoes, such as a commit.
  bool done = false;

  /// Takes over what the user wishes for every run, before the command begins.
  void configure();

  /// Notes that a file is in place, but that its folder could not be brought to the disk.
  void doubt(const std::string& file, int error);

 private:
  bool without_configuration_ = false;
};

// Each adds one command with its arguments; the command runs while the arguments are parsed.
void add_create(Host& host);
void add_info(Host& host);
void add_list(Host& host);
void add_show(Host& host);
void add_where_used(Host& host);
void add_import(Host& host);
void add_export(Host& host);
void add_copy(Host& host);
void add_remove(Host& host);
void add_purge(Host& host);
void add_restore(Host& host);
void add_check(Host& host);
void add_draw(Host& host);
void add_calc(Host& host);
void add_help(Host& host);

}  // namespace veldra_tool

#endif
