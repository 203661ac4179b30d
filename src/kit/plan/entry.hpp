// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_ENTRY_HPP
#define VELDRA_KIT_PLAN_ENTRY_HPP

#include <veldra/kit/plan.hpp>

#include <string>
#include <vector>

namespace veldra::kit {

/// Whether the destination gets a new object.
inline bool comes_in(const PlanEntry& entry) {
  return entry.decision == Decision::Add || entry.decision == Decision::Rename;
}

/// What a stored object gets in a field; null where that stays.
inline const FieldChange* change_of(const PlanEntry& entry, const char* field) {
  if (entry.decision != Decision::Change) return nullptr;
  for (const auto& change : entry.changes) {
    if (change.field == field) return &change;
  }
  return nullptr;
}

/// Throws the `PlanError` of objects, by what sentences call them, that are not as they were.
[[noreturn]] void throw_changed(const std::vector<std::string>& names);

}  // namespace veldra::kit

#endif
