// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_NUMBERS_HPP
#define VELDRA_KIT_NUMBERS_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace veldra::kit {

// What is wrong with the numbers of an object: sentences that go on behind the object's name. They
// quote texts as they are.

/// What is doubtful though a library takes it and finds no fault with it (`Library::check`): a
/// known property with a value that cannot be used (`KnownValues`), an absorptance, transmittance
/// or reflectance that is not from 0 to 1, a thickness of 0.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<std::string> doubtful_numbers(const Material& material);

/// The same of a composition: layers of the thickness 0, a variable layer that is none of its
/// layers, or limits of its thickness that contradict each other, and known properties. A layer may
/// be without thickness where its material is known by what it resists or lets through.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<std::string> doubtful_numbers(const Composition& composition);

/// What is doubtful, and what a library finds fault with when it has the material: a thickness that
/// is negative, infinite or not known.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<std::string> wrong_numbers(const Material& material);

/// The same of a composition.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<std::string> wrong_numbers(const Composition& composition);

/// What is wrong with a number, and which number that is.
struct NumberFault {
  std::string sentence;   ///< as `wrong_numbers` gives it
  std::string field;      ///< the key of the field, such as "thicknesses", or the custom property
  std::size_t layer = 0;  ///< whose it is, counted from 1; 0 for the object itself
};

/// What `wrong_numbers` gives, with the fields.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<NumberFault> number_faults(const Material& material);

/// The same of a composition.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::vector<NumberFault> number_faults(const Composition& composition);

}  // namespace veldra::kit

#endif
