// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_GBXML_MODEL_HPP
#define VELDRA_KIT_EXCHANGE_GBXML_MODEL_HPP

#include "kit/exchange/source_model.hpp"

#include <optional>
#include <string>

namespace veldra::kit {

/// The classes of materials of gbXML, which are all of one name: their values tell them apart.
const MaterialClasses& gbxml_classes();

/// The class that a material is read as by its values.
const MaterialClass& gbxml_class_of(const SourceMaterial& material);

/// The class of the constructions.
const ConstructionClass& gbxml_construction();

/// The element for a field of a material, or for the transmittance of a construction.
std::string gbxml_element_of(const SourceField& field);
constexpr const char* gbxml_transmittance = "U-value";

/// A unit in which the numbers of an element may stand.
struct GbxmlUnit {
  const char* element;
  const char* name;
  double times;  ///< the number of SI is the given one times this
  double over;   ///< and divided by that
  bool is_si;    ///< or else one of inch and pound
};

/// The unit of that name in whatever case; null when the element has none such.
const GbxmlUnit* gbxml_unit(const std::string& element, const std::string& name);

/// Whether an element is one of those.
bool gbxml_has_unit(const std::string& element);

/// The unit of SI that the library has for the numbers of an element.
const GbxmlUnit& gbxml_si_unit(const std::string& element);

}  // namespace veldra::kit

#endif
