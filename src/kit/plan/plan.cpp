// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/plan.hpp>

#include "kit/fields/field.hpp"
#include "kit/plan/application.hpp"
#include "kit/plan/entry.hpp"
#include "kit/plan/planning.hpp"

#include <veldra/kit/kinds.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

std::string name_of(const PlanEntry& entry) {
  return fmt::format("{} '{}'", singular_of(entry.source.type), entry.name);
}

/// The objects, as many as a person reads.
constexpr std::size_t most = 10;

void require_decided(const Plan& plan) {
  std::vector<std::string> names;
  for (const auto& entry : plan.entries()) {
    if (entry.decision == Decision::Undecided) names.push_back(name_of(entry));
  }
  if (names.empty()) return;
  throw PlanError(fmt::format("nobody has decided what becomes of {}", list_of(names, most)));
}

/// What matters of the state of a stored object.
bool same_state(const PlanEntry& planned, const PlanEntry& now) {
  const bool is_named =
      planned.source.type != ObjectType::Material && planned.source.type != ObjectType::Composition;
  return is_named || planned.fingerprint == now.fingerprint;
}

}  // namespace

PlanError::~PlanError() = default;

const char* name_of(Decision decision) {
  switch (decision) {
    case Decision::Add:
      return "added";
    case Decision::Equal:
      return "equal";
    case Decision::Tag:
      return "tagged";
    case Decision::Keep:
      return "kept";
    case Decision::Change:
      return "changed";
    case Decision::Rename:
      return "renamed";
    case Decision::Undecided:
      break;
  }
  return "undecided";
}

const char* name_of(Clash::With with) {
  switch (with) {
    case Clash::With::Name:
      return "name";
    case Clash::With::OtherCase:
      return "name in another case";
    case Clash::With::Code:
      break;
  }
  return "code";
}

Plan::Plan(std::shared_ptr<const Library> source, const Library& destination, PlanRules rules,
           const Progress& progress)
    : source_(std::move(source)), rules_(std::move(rules)) {
  entries_ = Planning(*source_, destination, rules_, progress).entries();
}

bool Plan::is_decided() const noexcept {
  return std::none_of(entries_.begin(), entries_.end(),
                      [](const PlanEntry& entry) { return entry.decision == Decision::Undecided; });
}

bool Plan::changes_anything() const noexcept {
  return std::any_of(entries_.begin(), entries_.end(), [](const PlanEntry& entry) {
    return entry.decision != Decision::Equal && entry.decision != Decision::Keep;
  });
}

IdMapping Plan::apply(Library& destination, const Progress& progress) const {
  require_decided(*this);
  return Application(*this, destination, progress).run();
}

IdMapping Plan::apply_later(Library& destination, const Progress& progress) const {
  if (!rules_.fingerprints) throw PlanError("the plan was made without fingerprints");
  Library::Transaction transaction(destination);
  const Plan now(source_, destination, rules_, progress);
  require_same_state(*this, now);
  auto mapping = now.apply(destination, progress);
  transaction.commit();
  return mapping;
}

void require_same_state(const Plan& plan, const Plan& now) {
  const auto& before = plan.entries();
  const auto& after = now.entries();
  if (before.size() != after.size()) throw PlanError("the source of the plan has changed");
  std::vector<std::string> names;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!same_state(before[i], after[i])) names.push_back(name_of(before[i]));
  }
  if (!names.empty()) throw_changed(names);
}

void throw_changed(const std::vector<std::string>& names) {
  throw PlanError(fmt::format("{} changed since the plan was made: {}",
                              names.size() == 1 ? "an object has" : "objects have",
                              list_of(names, most)));
}

}  // namespace veldra::kit
