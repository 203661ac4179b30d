// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PLAN_REPORT_HPP
#define VELDRA_TOOL_PLAN_REPORT_HPP

#include "json.hpp"
#include "kit.hpp"

#include <veldra/veldra.hpp>

#include <string>
#include <vector>

namespace veldra_tool {

/// So many objects a person reads one by one.
constexpr std::size_t few_objects = 20;

/// In the order in which they are counted.
const std::vector<kit::Decision>& all_decisions();

using PlanEntries = std::vector<const kit::PlanEntry*>;

/// All entries of a plan, or those that `wanted` holds for.
PlanEntries entries_of(const kit::Plan& plan);

/// What becomes, or became, of each object, a line for each and below it what changes; more than 20
/// are counted unless `verbose`.
std::string text_of(const PlanEntries& entries, bool verbose);

/// How many of each kind became what.
std::string counted_text(const std::vector<kit::PlanEntry>& entries);

/// The same for programs. The ids are those of the destination, as far as objects are there.
Json json_of(const PlanEntries& entries, const veldra::IdMapping& mapping,
             const veldra::Library& source);

/// What nobody has decided.
struct Undecided {
  std::string sentence;
  bool is_of_names;  ///< so that it can be decided
};

std::vector<Undecided> clashes_of(const kit::Plan& plan);

}  // namespace veldra_tool

#endif
