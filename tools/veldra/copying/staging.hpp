// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_COPYING_STAGING_HPP
#define VELDRA_TOOL_COPYING_STAGING_HPP

#include "object_arguments.hpp"

#include <veldra/veldra.hpp>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tool {

/// How many assets the materials of a library have, by their names.
using AssetCounts = std::map<std::string, unsigned>;

/// What is to be copied, in a library in memory, so that nobody waits for the source.
class Staging {
 public:
  /// Everything in a source. Throws `Failure`, which names the file.
  static Staging of_everything(const std::string& source);

  /// Some objects of a source, and what they refer to. Throws `Failure`, which names the file.
  static Staging of(const std::string& source, const std::vector<NamedObject>& wanted);

  /// With the locale and the region of the source.
  const std::shared_ptr<veldra::Library>& library() const { return library_; }

  /// The assets of the materials of the source, which stay behind.
  const AssetCounts& assets() const { return assets_; }

  /// Runs what reads the library, and tells what is wrong with its objects as a `Failure` of the
  /// source.
  bool reading(const std::function<bool()>& read) const;

 private:
  /// Within one state of the source.
  using Choose = std::function<void(const veldra::Library& source, veldra::Library& staging)>;

  static Staging of_objects(const std::string& source, const Choose& choose);

  bool are_pages_ = false;
  std::string source_;
  std::shared_ptr<veldra::Library> library_;
  AssetCounts assets_;
};

}  // namespace veldra_tool

#endif
