// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FILES_DESTINATION_HPP
#define VELDRA_TOOL_FILES_DESTINATION_HPP

#include "host.hpp"

#include <veldra/veldra.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace veldra_tool {

/// Where a command puts objects: the library that is there, or one that is made for it.
class Destination {
 public:
  /// Works within a transaction of the library, and gives whether it is to be kept.
  using Work = std::function<bool(const std::shared_ptr<veldra::Library>&)>;

  /// Gets ready for a library before others have to wait for it.
  using Prepare = std::function<void(veldra::Unit)>;

  /// In a dry run nothing is made or kept.
  Destination(const std::string& file, bool dry_run, Host& host)
      : file_(file), dry_run_(dry_run), host_(host) {}

  /// Runs the work on the library that is there, be it that somebody makes it meanwhile, or on a
  /// new one in a unit. One that is there may be tried after a new one that somebody forestalled.
  /// Unless `makes_new`, a new one is not made in the end.
  void take(veldra::Unit unit, bool makes_new, const Work& work);

  /// Runs the work on the library that has to be there. Throws `Failure` when there is none.
  void take_existing(const Work& work) { into_existing(work); }

  /// Refuses a library that is there and has another unit; `LibraryFailure` says so.
  void demand(std::optional<veldra::Unit> unit) { demanded_ = unit; }

  void prepare_by(Prepare prepare) { prepare_ = std::move(prepare); }

 private:
  void into_existing(const Work& work);
  bool into_new(veldra::Unit unit, const Work& work);
  void within(const std::shared_ptr<veldra::Library>& library, const Work& work);

  const std::string& file_;
  bool dry_run_;
  Host& host_;
  std::optional<veldra::Unit> demanded_;
  Prepare prepare_;
};

}  // namespace veldra_tool

#endif
