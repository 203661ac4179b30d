// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/ifc_users.hpp"

#include "kit/exchange/ifc_model.hpp"

namespace veldra::kit {

namespace {

// The places of what is read in each element and each type of elements.
constexpr std::size_t name_place = 2;
constexpr std::size_t property_sets_of_type = 5;
constexpr std::size_t predefined_of_slab = 8;
constexpr std::size_t predefined_of_slab_type = 9;

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

bool is_type(const StepInstance& user) {
  constexpr std::string_view ending = "TYPE";
  const auto keyword = user.keyword;
  return keyword.size() > ending.size() && keyword.substr(keyword.size() - ending.size()) == ending;
}

Composition::Type type_of(const StepInstance& user, const StepFields& fields) {
  const auto keyword = user.keyword;
  if (begins_with(keyword, "IFCWALL")) return Composition::Type::Wall;
  if (begins_with(keyword, "IFCROOF")) return Composition::Type::Roof;
  if (begins_with(keyword, "IFCCOVERING")) return Composition::Type::Floor;
  if (!begins_with(keyword, "IFCSLAB")) return Composition::Type::Other;
  const auto place = is_type(user) ? predefined_of_slab_type : predefined_of_slab;
  return fields[place].enumeration() == "ROOF" ? Composition::Type::Roof : Composition::Type::Floor;
}

}  // namespace

Composition::Type IfcUse::type() const {
  return types.size() == 1 ? *types.begin() : Composition::Type::Other;
}

IfcUsers::IfcUsers(const StepFile& file) : file_(file) {
  read_types_of_elements();
  for (const auto* association : file.all("IFCRELASSOCIATESMATERIAL")) {
    read_association(*association);
  }
}

const IfcUse& IfcUsers::of(std::uint64_t set) const {
  static const IfcUse none;
  const auto found = uses_.find(set);
  return found != uses_.end() ? found->second : none;
}

void IfcUsers::read_types_of_elements() {
  for (const auto* relation : file_.all("IFCRELDEFINESBYTYPE")) {
    const auto fields = file_.fields_of(*relation);
    const auto* type = file_.find(fields[5]);
    if (type == nullptr) continue;
    fields[4].for_each([&](const StepValue& element) {
      const auto number = element.reference();
      if (number) types_.emplace(*number, type);
    });
  }
}

void IfcUsers::read_association(const StepInstance& association) {
  const auto fields = file_.fields_of(association);
  const auto* usage = file_.find(fields[5], "IFCMATERIALLAYERSETUSAGE");
  const auto* set =
      usage != nullptr ? file_.find(file_.fields_of(*usage)[0]) : file_.find(fields[5]);
  if (set == nullptr || set->keyword != "IFCMATERIALLAYERSET") return;
  auto& use = uses_[set->number];
  fields[4].for_each([&](const StepValue& reference) {
    const auto* user = file_.find(reference);
    if (user != nullptr) add_user(*user, usage, use);
  });
}

void IfcUsers::add_user(const StepInstance& user, const StepInstance* usage, IfcUse& use) {
  const auto fields = file_.fields_of(user);
  const auto type = type_of(user, fields);
  if (type != Composition::Type::Other) use.types.insert(type);
  add_name(user, fields, use);
  if (usage != nullptr) add_order(*usage, type, use);
  if (is_type(user) && use.own_set == nullptr) use.own_set = own_set_of(fields);
}

/// The name of a type says more than those of its elements.
void IfcUsers::add_name(const StepInstance& user, const StepFields& fields, IfcUse& use) const {
  if (use.is_of_type) return;
  auto name = fields[name_place].text().value_or("");
  bool is_of_type = is_type(user);
  const auto found = types_.find(user.number);
  if (!is_of_type && found != types_.end()) {
    const auto type_name = file_.fields_of(*found->second)[name_place].text().value_or("");
    is_of_type = !type_name.empty();
    if (is_of_type) name = type_name;
  }
  if (name.empty() || (!is_of_type && !use.name.empty())) return;
  use.name = name;
  use.is_of_type = is_of_type;
}

/// Layers of slabs are stacked upward, or downward. The outside of a roof is above, and that of a
/// floor below. Nothing says on which side of a wall the outside is.
void IfcUsers::add_order(const StepInstance& usage, Composition::Type type, IfcUse& use) const {
  const auto fields = file_.fields_of(usage);
  const auto sense = fields[2].enumeration();
  const bool is_slab = type == Composition::Type::Roof || type == Composition::Type::Floor;
  if (!is_slab || fields[1].enumeration() != "AXIS3") return;
  if (sense != "POSITIVE" && sense != "NEGATIVE") return;
  const bool upward = sense == "POSITIVE";
  const bool from_outside = upward == (type == Composition::Type::Floor);
  const auto order = from_outside ? IfcUse::Order::FromOutside : IfcUse::Order::FromInside;
  const bool differs = use.order != IfcUse::Order::Unknown && use.order != order;
  use.order = differs ? IfcUse::Order::Both : order;
}

const StepInstance* IfcUsers::own_set_of(const StepFields& fields) const {
  const StepInstance* own = nullptr;
  fields[property_sets_of_type].for_each([&](const StepValue& reference) {
    const auto* set = file_.find(reference, "IFCPROPERTYSET");
    if (set == nullptr || own != nullptr) return;
    if (file_.fields_of(*set)[name_place].text() == std::string(ifc_own_set)) own = set;
  });
  return own;
}

}  // namespace veldra::kit
