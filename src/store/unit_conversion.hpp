// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_UNIT_CONVERSION_HPP
#define VELDRA_STORE_UNIT_CONVERSION_HPP

#include "objects/description.hpp"

namespace veldra {

/// Multiplies all lengths of a record.
template <class Record>
class LengthConversion {
 public:
  LengthConversion(Record& record, double factor) : record_(record), factor_(factor) {}

  template <class Role, class How, class Values, class Field>
  auto operator()(Member<Role, How, Values, Field>)
      -> IfOneOf<Role, Plain, Number, Reference, NeededReference, UnsavedReference, References,
                 ValuesByProperty> {}

  template <class How, class Values, class Field>
  void operator()(Member<Length, How, Values, Field> member) {
    convert(record_.*member.field);
  }

  template <class How, class Values, class Field>
  void operator()(Member<LayersOfMaterials, How, Values, Field> member) {
    for (auto& layer : record_.*member.field) layer.thickness(layer.thickness() * factor_);
  }

 private:
  void convert(double& length) const { length *= factor_; }

  void convert(odb::nullable<double>& length) const {
    if (!length.null()) *length *= factor_;
  }

  void convert(std::set<double>& lengths) const {
    std::set<double> converted;
    for (const double length : lengths) converted.insert(length * factor_);
    lengths.swap(converted);
  }

  Record& record_;
  double factor_;
};

/// Converts the lengths of a record from one unit to another.
template <class Record>
void convert_lengths(Record& record, Unit from, Unit to) {
  const double factor = length_factor(from, to);
  if (factor == 1.0) return;
  for_each_member(typename Record::Parts(), LengthConversion<Record>(record, factor));
}

}  // namespace veldra

#endif
