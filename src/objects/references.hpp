// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_REFERENCES_HPP
#define VELDRA_OBJECTS_REFERENCES_HPP

#include "objects/description.hpp"
#include "objects/object_access.hpp"

namespace veldra {

/// Calls `visit` with each pointer to another object that the members of a record hold, also with
/// those that are null.
template <class Record, class Visit>
class ReferencesOfMembers {
 public:
  ReferencesOfMembers(Record& record, Visit& visit) : record_(record), visit_(visit) {}

  template <class Role, class How, class Values, class Field>
  auto operator()(Member<Role, How, Values, Field>) -> IfOneOf<Role, Plain, Length, Number> {}

  template <class Role, class How, class Values, class Field>
  auto operator()(Member<Role, How, Values, Field> member)
      -> IfOneOf<Role, Reference, NeededReference, UnsavedReference> {
    visit_(record_.*member.field);
  }
  template <class How, class Values, class Field>
  void operator()(Member<References, How, Values, Field> member) {
    for (auto& reference : record_.*member.field) visit_(reference);
  }
  template <class How, class Values, class Field>
  void operator()(Member<ValuesByProperty, How, Values, Field> member) {
    for (auto& value : record_.*member.field) visit_(ObjectAccess::property(value.first));
  }
  template <class How, class Values, class Field>
  void operator()(Member<LayersOfMaterials, How, Values, Field> member) {
    for (auto& layer : record_.*member.field) visit_(layer.material());
  }

 private:
  Record& record_;
  Visit& visit_;
};

template <class Record, class Visit>
void for_each_reference(Record& record, Visit&& visit) {
  for_each_member(typename Record::Parts(), ReferencesOfMembers<Record, Visit>(record, visit));
}

}  // namespace veldra

#endif
