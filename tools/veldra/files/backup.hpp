// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_BACKUP_HPP
#define VELDRA_TOOL_FILES_BACKUP_HPP

#include "files/temporary_file.hpp"

#include <veldra/veldra.hpp>

#include <optional>
#include <string>

namespace veldra_tool {

/// The backup of a library that a command is about to change, if one is wanted: in a file that
/// somebody names, or under a name of its own in the folder for backups.
///
/// It lies under a temporary name until it is certain that the library will be changed, and gets
/// its place before it is. What fails until then leaves no backup; afterwards it stays, be it that
/// the library could not be changed.
///
/// The functions throw `Failure`, and do nothing where no backup is wanted.
class Backup {
 public:
  /// Has the backup go to a new file.
  void go_to_file(const std::string& file) { file_ = file; }

  /// Has it go to a folder, unless it goes to a file: a path from the root, or one from the folder
  /// of the library.
  void go_to_folder(const std::string& folder) { folder_ = folder; }

  /// Throws where the backup could not have its place.
  void require_place() const;

  /// Says which library is about to be changed.
  void is_of(const std::string& library) { library_ = library; }

  /// Makes the backup from a handle of its own. The library may be in a transaction that has not
  /// changed anything, and then is what the transaction will change.
  void make();

  /// The same from an open handle, which has no transaction.
  void make(const veldra::Library& library);

  /// Puts it into its place.
  void put_into_place();

 private:
  bool is_wanted() const;
  std::string folder() const;
  std::string candidate(int number) const;
  void begin();
  void write(const veldra::Library& library);

  std::string file_;
  std::string folder_;
  std::string library_;
  std::string name_;  ///< the place, as somebody names it
  std::optional<TemporaryFile> temporary_;
};

}  // namespace veldra_tool

#endif
