// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_PLANNING_HPP
#define VELDRA_KIT_PLAN_PLANNING_HPP

#include "kit/plan/comparing.hpp"
#include "kit/plan/stored_objects.hpp"

#include <veldra/kit/plan.hpp>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace veldra::kit {

/// Finds out what is to become of the objects of a source.
class Planning {
 public:
  Planning(const Library& source, const Library& destination, const PlanRules& rules,
           const Progress& progress)
      : source_(source), destination_(destination), rules_(rules), progress_(progress) {}

  std::vector<PlanEntry> entries();

 private:
  template <class T>
  void plan_named();
  void plan_properties();
  template <class T>
  void plan_built();
  void note_new_names();

  const Library& source_;
  const Library& destination_;
  const PlanRules& rules_;
  const Progress& progress_;
  std::vector<PlanEntry> entries_;
  NewNames materials_;
};

}  // namespace veldra::kit

#endif
