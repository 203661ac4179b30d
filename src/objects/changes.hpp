// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_CHANGES_HPP
#define VELDRA_OBJECTS_CHANGES_HPP

#include <odb/nullable.hxx>

#include <memory>
#include <utility>

namespace veldra {

/// The rule of the setters: an equal value changes nothing, any other is stored and marks the
/// record dirty. The mark comes last, so that a failed copy leaves the object as it was.
template <class Record, class Field, class Value>
void change(Record& record, Field& field, const Value& value) {
  if (field == value) return;
  field = value;
  record.dirty = true;
}

/// The same for a value that may be absent; an absent one differs from any.
template <class Record, class Value>
void change_nullable(Record& record, odb::nullable<Value>& field, const Value& value) {
  if (!field.null() && *field == value) return;
  field = value;
  record.dirty = true;
}

/// Makes a value absent. Deliberate: marks the record dirty also when it was absent.
template <class Record, class Value>
void clear(Record& record, odb::nullable<Value>& field) {
  field.reset();
  record.dirty = true;
}

/// Makes `record` hold the values of `other`, all of them; what ties it to its library stays.
template <class Record>
void assign_values(Record& record, const Record& other) {
  Record values(other);
  values.id = record.id;
  values.library = record.library;
  values.is_stub = record.is_stub;
  values.dirty = true;
  record = std::move(values);
}

}  // namespace veldra

#endif
