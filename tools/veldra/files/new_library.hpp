// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_NEW_LIBRARY_HPP
#define VELDRA_TOOL_FILES_NEW_LIBRARY_HPP

#include "files/temporary_file.hpp"
#include "host.hpp"

#include <veldra/veldra.hpp>

#include <memory>
#include <string>

namespace veldra_tool {

/// Throws `Failure` where no new library can be, because of its name or of what lies beside it.
void require_place_for_library(const std::string& file);

/// A library that is made, and filled, before anybody sees it: it lies under a name of its own
/// until it is whole. Unless it gets its place it goes.
class NewLibrary {
 public:
  /// `file` is the name that it is to get. Throws `Failure`.
  NewLibrary(const std::string& file, veldra::Unit unit, const std::string& guid);

  const std::shared_ptr<veldra::Library>& library() const { return library_; }

  /// Closes the library, which nobody else may hold, and puts it into place. Returns false where
  /// something is there by now; that stays.
  bool put_into_place(Host& host);

 private:
  std::string file_;
  std::string path_;
  TemporaryFile temporary_;
  std::shared_ptr<veldra::Library> library_;
};

}  // namespace veldra_tool

#endif
