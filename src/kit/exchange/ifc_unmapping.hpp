// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_IFC_UNMAPPING_HPP
#define VELDRA_KIT_EXCHANGE_IFC_UNMAPPING_HPP

#include "kit/exchange/ifc_model.hpp"

#include <memory>
#include <string>

namespace veldra::kit {

/// What a model says of an object of a library, and the object that the reader makes of that.
template <class Source, class T>
struct IfcUnmapped {
  Source source;
  std::shared_ptr<T> back;
};

/// A name as long as a label of IFC can be.
std::string ifc_label(const std::string& name);

/// The unit of lengths of a model of a library: that of the library.
IfcUnit ifc_length_of(Unit unit);

IfcUnmapped<IfcMaterial, Material> unmap_ifc(const Material& material, Unit unit);

/// The same of a composition whose layers all have a material; each of them is of the material of
/// its place.
IfcUnmapped<IfcLayerSet, Composition> unmap_ifc(const Composition& composition, Unit unit);

}  // namespace veldra::kit

#endif
