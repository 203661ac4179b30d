// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_DESCRIPTION_HPP
#define VELDRA_TESTS_SUPPORT_DESCRIPTION_HPP

#include <veldra/veldra.hpp>

#include <memory>
#include <string>

namespace veldra_tests {

/// All values of an object and of what it refers to as a text, to compare and to read: numbers
/// with 17 digits, code units that are not ASCII as numbers. Ids, libraries, dirty flags and
/// identities are not in it, so that an object and its copy in another file have the same text.
/// For all kinds and the two kinds of assets.
template <class T>
std::string values_of(const std::shared_ptr<T>& object);

/// The same, and for each object its id, library, dirty flag and address: all that a failed
/// operation must leave as it was. The text is only good while the objects live.
template <class T>
std::string state_of(const std::shared_ptr<T>& object);

}  // namespace veldra_tests

namespace veldra {

// How failed expectations show the values.
void PrintTo(const String& text, std::ostream* out);
void PrintTo(const ObjectKey& key, std::ostream* out);

}  // namespace veldra

#endif
