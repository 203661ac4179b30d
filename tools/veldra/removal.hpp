// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_REMOVAL_HPP
#define VELDRA_TOOL_REMOVAL_HPP

#include "process/spool.hpp"

#include <veldra/veldra.hpp>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace veldra_tool {

/// An object that was to be removed.
struct Candidate {
  veldra::ObjectKey key;
  std::string name;
  bool removed = false;
};

/// The objects of some kinds, in the order of the kinds and then of their names.
std::vector<Candidate> candidates(const veldra::Library& library,
                                  const std::set<veldra::ObjectType>& kinds);

/// Enters into the candidates which of them went.
void enter_results(std::vector<Candidate>& candidates,
                   const std::map<veldra::ObjectKey, bool>& results);

/// Which of the candidates would go: those that nothing refers to but what goes as well.
void predict_removal(std::vector<Candidate>& candidates, const veldra::Library& library);

/// How many objects go, by their kinds.
using RemovalCounts = std::map<veldra::ObjectType, std::size_t>;

RemovalCounts counts_of(const std::vector<Candidate>& candidates);

/// The same for people, such as "7 objects (2 compositions, 5 tags)".
std::string text_of(const RemovalCounts& counts);

void print_candidates(Spool& output, const std::vector<Candidate>& candidates, bool json,
                      const char* removed);

/// The same for a purge, whose text only counts what stays.
void print_purged(Spool& output, const std::vector<Candidate>& candidates, bool json,
                  const char* removed);

}  // namespace veldra_tool

#endif
