// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_KIND_PLANNING_HPP
#define VELDRA_KIT_PLAN_KIND_PLANNING_HPP

#include "kit/plan/comparing.hpp"
#include "kit/plan/stored_objects.hpp"

#include <veldra/kit/plan.hpp>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace veldra::kit {

/// Finds out what is to become of the materials, or the compositions, of a source.
template <class T>
class KindPlanning {
 public:
  KindPlanning(const Library& source, const Library& destination, const PlanRules& rules,
               const Progress& progress, const NewNames& materials);

  /// Adds an entry for each to `entries`.
  void plan(std::vector<PlanEntry>& entries);

 private:
  using Objects = std::vector<std::shared_ptr<T>>;

  void plan_part(const std::set<unsigned>& ids, std::vector<PlanEntry>& entries);
  PlanEntry entry_of(const T& incoming) const;
  unsigned stored_for(const T& incoming, bool& other_case) const;
  void forget_stored(PlanEntry& entry) const;
  void note_code(const T& incoming);
  void decide(PlanEntry& entry, const T& incoming, const T& stored);
  void decide_state(PlanEntry& entry, const T& incoming, const T& stored) const;
  void compare(PlanEntry& entry, const T& incoming, const T& stored) const;
  void decide_clash(PlanEntry& entry, const T& incoming, const T& stored);
  void rename(PlanEntry& entry, const T& incoming);
  bool rename_to(PlanEntry& entry, const T& incoming, const std::string& name);
  bool is_renamed(const ObjectKey& key) const;
  std::string given_name(const PlanEntry& entry) const;
  bool is_free(const std::string& name, const std::string& own) const;
  OnClash policy_for(const ObjectKey& key) const;

  void settle_taken(std::vector<PlanEntry>& entries, std::size_t begin);
  void require_free(PlanEntry& entry, unsigned holder, const std::set<unsigned>& give_up,
                    const std::string& code) const;

  const Library& source_;
  const Library& destination_;
  const PlanRules& rules_;
  const Progress& progress_;
  const NewNames& materials_;
  Comparing<T> comparing_;
  StoredObjects<T> stored_;
  StoredCodes stored_codes_;
  std::set<std::string> given_names_;
  std::map<ObjectKey, std::string> codes_;  ///< of incoming materials
};

}  // namespace veldra::kit

#endif
