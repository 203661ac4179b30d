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

/// Which of the candidates a purge would remove: those that nothing refers to but what goes as
/// well.
void predict_purge(std::vector<Candidate>& candidates, const veldra::Library& library);

void print_candidates(Spool& output, const std::vector<Candidate>& candidates, bool json,
                      const char* removed);

/// The same for a purge, whose text only counts what stays.
void print_purged(Spool& output, const std::vector<Candidate>& candidates, bool json,
                  const char* removed);

}  // namespace veldra_tool

#endif
