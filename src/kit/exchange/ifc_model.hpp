// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_IFC_MODEL_HPP
#define VELDRA_KIT_EXCHANGE_IFC_MODEL_HPP

#include "kit/exchange/catalogue_reader.hpp"
#include "kit/exchange/ifc_units.hpp"
#include "kit/exchange/shared_objects.hpp"
#include "kit/exchange/source_model.hpp"

#include <veldra/kit/fields.hpp>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace veldra::kit {

/// The property set that takes the values of a library for which IFC has no place.
constexpr const char* ifc_own_set = "veldra";

/// In that set of a type of elements: in which order its layers stand.
constexpr const char* ifc_layer_order = "layer order";
constexpr const char* ifc_from_outside = "from outside to inside";

/// In that set: the functions of layers, where the host has functions of its own.
constexpr const char* ifc_layer_functions = "layer functions";

constexpr const char* ifc_category_property = "IFC category";

/// Values by their names, in the order of the file.
using IfcValues = std::vector<std::pair<std::string, std::string>>;

/// A material as an IFC model has it.
struct IfcMaterial {
  std::string name;
  unsigned line = 0;
  std::string description;
  std::string category;
  std::string classification;
  std::optional<Color> shading_color;
  std::optional<Color> cut_pattern_color;
  IfcValues properties;  ///< by the names of custom properties
  IfcValues own;         ///< of the property set for values of a library
  FieldsNotKept not_kept;
};

/// Whether both have the same contents, wherever they stand.
bool operator==(const IfcMaterial& left, const IfcMaterial& right);

struct IfcLayer {
  static constexpr std::size_t air = static_cast<std::size_t>(-1);

  std::size_t material = air;  ///< the place in the list of materials
  double thickness = 0;        ///< in the unit of the file
  bool ventilated = false;
  bool structural = false;
};

/// A set of layers as an IFC model has it.
struct IfcLayerSet {
  std::string name;
  unsigned line = 0;
  Composition::Type type = Composition::Type::Other;
  std::string description;
  std::vector<IfcLayer> layers;  ///< from outside to inside
  IfcValues own;
  FieldsNotKept not_kept;
};

/// What an IFC model holds for a library.
struct IfcModel {
  std::string schema;
  IfcUnit length;
  std::vector<IfcMaterial> materials;
  std::vector<IfcLayerSet> sets;
  std::map<std::string, unsigned> skipped;
  std::vector<SourceProblem> problems;
};

/// Reads the text of a model. Throws `SourceError`: it is malformed, or of a schema that is not
/// known.
IfcModel read_ifc(const std::string& file, std::string_view text);

/// The material type that a category means; empty for none.
std::string known_material_type(const std::string& name);

/// The name of the air in a layer without material.
std::string ifc_air_name(const IfcLayer& layer);

/// The field of a name in the property set for values of a library; null for a custom property.
template <class T>
const Field<T>* ifc_own_field(const std::string& name);

/// The custom property of such a name, and the kind of objects that it is for.
template <class T>
std::pair<std::string, ObjectType> ifc_own_property(const std::string& name);

/// The name of a custom property there.
template <class T>
std::string ifc_name_of_property(const CustomProperty& property);

/// Tells a value that an object cannot have.
using TellProblem = std::function<void(const std::string& sentence)>;

/// The material of a library.
std::shared_ptr<Material> map_ifc(const IfcMaterial& source, const IfcUnit& length, Unit unit,
                                  SharedObjects& shared, const TellProblem& tell);

/// The composition of a library, without its layers, and what these are.
CatalogueComposition map_ifc(const IfcLayerSet& source, const std::vector<std::string>& materials,
                             const IfcUnit& length, Unit unit, SharedObjects& shared,
                             const TellProblem& tell);

}  // namespace veldra::kit

#endif
