// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_FIELDS_FIELD_HPP
#define VELDRA_KIT_FIELDS_FIELD_HPP

#include <veldra/kit/fields.hpp>

#include <string>
#include <vector>

namespace veldra::kit {

/// Names for the end of a sentence, as many as a person reads.
std::string list_of(const std::vector<std::string>& names, std::size_t most = 30);

/// A sentence that there is no such thing, what was perhaps meant, and what there is.
std::string absence_of(const std::string& what, const std::string& name,
                       const std::vector<std::string>& names);

/// The end of such a sentence.
std::string choice_of(const std::string& name, const std::vector<std::string>& names,
                      std::size_t most = 30);

}  // namespace veldra::kit

#endif
