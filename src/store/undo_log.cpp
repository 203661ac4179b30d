// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/undo_log.hpp"

namespace veldra {

UndoLog::~UndoLog() {
  for (auto action = actions_.rbegin(); action != actions_.rend(); ++action) (*action)();
  for (auto former = records_.rbegin(); former != records_.rend(); ++former) {
    former->record->id = former->id;
    former->record->library = std::move(former->library);
    // What the host has changed since must not be taken for saved.
    former->record->dirty = former->dirty || former->record->dirty;
  }
}

void UndoLog::remember(std::shared_ptr<const void> object, ObjectRecord& record) {
  records_.push_back({std::move(object), &record, record.id, record.library, record.dirty});
}

void UndoLog::keep_changes() noexcept {
  actions_.clear();
  records_.clear();
}

}  // namespace veldra
