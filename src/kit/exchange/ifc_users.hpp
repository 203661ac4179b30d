// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_IFC_USERS_HPP
#define VELDRA_KIT_EXCHANGE_IFC_USERS_HPP

#include "kit/exchange/step_file.hpp"

#include <veldra/composition.hpp>

#include <map>
#include <set>
#include <string>

namespace veldra::kit {

/// What the elements and types that have a set of layers tell about it.
struct IfcUse {
  enum class Order { Unknown, FromOutside, FromInside, Both };

  /// The type that all of them have that have one; else that of others.
  Composition::Type type() const;

  std::string name;  ///< of a type, else of an element
  bool is_of_type = false;
  std::set<Composition::Type> types;
  Order order = Order::Unknown;
  const StepInstance* own_set = nullptr;  ///< the property set for values of a library
};

/// Who uses the sets of layers of a model.
class IfcUsers {
 public:
  explicit IfcUsers(const StepFile& file);

  /// Of the set with a number.
  const IfcUse& of(std::uint64_t set) const;

 private:
  void read_types_of_elements();
  void read_association(const StepInstance& association);
  void add_user(const StepInstance& user, const StepInstance* usage, IfcUse& use);
  void add_name(const StepInstance& user, const StepFields& fields, IfcUse& use) const;
  void add_order(const StepInstance& usage, Composition::Type type, IfcUse& use) const;
  const StepInstance* own_set_of(const StepFields& fields) const;

  const StepFile& file_;
  std::map<std::uint64_t, IfcUse> uses_;
  std::map<std::uint64_t, const StepInstance*> types_;  ///< of elements
};

}  // namespace veldra::kit

#endif
