// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_COMPARE_HPP
#define VELDRA_KIT_COMPARE_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/value.hpp>

#include <string>
#include <vector>

namespace veldra::kit {

/// A field of which an object has, or gets, another value.
struct FieldChange {
  std::string field;  ///< the name of the field (`FieldDescription::name`)
  Value before;       ///< the value of the first object, or of the stored one
  Value after;        ///< that of the other one
};

/// The fields of which two materials have different values, name and code among them, in the order
/// of the JSON format. This is what makes objects differ, here and in plans (`Plan`):
///
/// - Of objects to which they refer, the names count.
/// - Lengths of which one has come through other units are the same (`same_length`).
/// - Tags do not count, which say where something came from, and assets, which are never copied.
///
/// Throws: as `Field::get`.
VELDRA_KIT_EXPORT std::vector<FieldChange> differences(const Material& material,
                                                       const Material& other);

/// The same of two compositions.
///
/// Throws: as `Field::get`.
VELDRA_KIT_EXPORT std::vector<FieldChange> differences(const Composition& composition,
                                                       const Composition& other);

/// Whether two materials have the same values by these rules.
///
/// Throws: as `Field::get`.
VELDRA_KIT_EXPORT bool same_values(const Material& material, const Material& other);

/// The same of two compositions.
///
/// Throws: as `Field::get`.
VELDRA_KIT_EXPORT bool same_values(const Composition& composition, const Composition& other);

}  // namespace veldra::kit

#endif
