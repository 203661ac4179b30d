// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_FINDING_HPP
#define VELDRA_STORE_FINDING_HPP

#include <veldra/library.hpp>

#include <string>
#include <vector>

namespace veldra {

using Findings = std::vector<Library::Finding>;

/// A finding of the texts of a file, whatever their bytes are.
Library::Finding make_finding(const ObjectKey& object, const std::string& name,
                              const std::string& sentence);

/// One on the file as a whole.
Library::Finding finding_of_file(const std::string& sentence);

/// The finding with what it is about, as one sentence.
String told(const Library::Finding& finding);

/// "material type", and "material types".
std::string singular_of(ObjectType type);
std::string plural_of(ObjectType type);

}  // namespace veldra

#endif
