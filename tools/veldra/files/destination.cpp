// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/destination.hpp"

#include "files/new_library.hpp"
#include "kinds.hpp"
#include "opening.hpp"

#include <fmt/format.h>

namespace veldra_tool {

void Destination::take(veldra::Unit unit, bool makes_new, const Work& work) {
  while (!file_exists(file_)) {
    require_place_for_library(file_);
    if (dry_run_ || !makes_new) {
      within(watched(veldra::Library::create(":memory:", unit, "")), work);
      return;
    }
    if (into_new(unit, work)) return;
  }
  into_existing(work);
}

void Destination::into_existing(const Work& work) {
  const auto library = dry_run_ ? open_library(file_, Access::Write) : open_to_change(host_, file_);
  within(library, work);
  host_.done = !dry_run_ && host_.status != Status::Failed;
}

bool Destination::into_new(veldra::Unit unit, const Work& work) {
  NewLibrary made(file_, unit, "");
  within(made.library(), work);
  if (made.put_into_place(host_)) return true;
  host_.output.clear();
  return false;
}

/// What is kept has its backup in place before.
void Destination::within(const std::shared_ptr<veldra::Library>& library, const Work& work) {
  if (demanded_ && library->unit() != *demanded_) {
    throw LibraryFailure(
        fmt::format("its unit is {}; --unit is for a new library", name_of(library->unit())));
  }
  if (prepare_) prepare_(library->unit());
  veldra::Library::Transaction transaction(*library);
  forbid_sudden_end();  // from here on the file may be written
  host_.backup.make();
  const bool keeps = work(library);
  stop_if_asked();
  if (!keeps || dry_run_) return;
  host_.backup.put_into_place();
  transaction.commit();
}

}  // namespace veldra_tool
