// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_IFC_PROPERTIES_HPP
#define VELDRA_KIT_EXCHANGE_IFC_PROPERTIES_HPP

#include "kit/exchange/ifc_model.hpp"
#include "kit/exchange/ifc_units.hpp"
#include "kit/exchange/step_file.hpp"

#include <functional>
#include <set>
#include <string>

namespace veldra::kit {

/// Finds the material that a value refers to; null for none.
using FindIfcMaterial = std::function<IfcMaterial*(const StepValue& reference)>;

/// Reads the properties of materials, and what classifies them.
class IfcProperties {
 public:
  IfcProperties(const StepFile& file, IfcUnits& units) : file_(file), units_(units) {}

  /// Gives the materials of a model their properties.
  void read(const FindIfcMaterial& material_of);

  /// The values of a property set, by the names of its properties.
  IfcValues values_of_set(const StepInstance& set);

 private:
  /// A value as a text, and the unit that it is in; empty for none.
  struct Written {
    std::string value;
    std::string unit;
  };

  void read_sets(const FindIfcMaterial& material_of);
  void read_set(const std::string& set, const StepValue& properties, IfcMaterial& material);
  void read_fixed_classes(const FindIfcMaterial& material_of);
  void read_classifications(const FindIfcMaterial& material_of);
  void classify(const StepInstance& relation, const StepValue& by, const StepValue& objects,
                const FindIfcMaterial& material_of);
  void add_classification(const StepInstance& relation, const std::string& text,
                          IfcMaterial& material) const;
  std::string classification_in(const StepValue& reference) const;
  std::string notation_in(const StepInstance& notation) const;
  void add(const std::string& property, const Written& written, IfcMaterial& material);
  std::optional<Written> value_of(const StepFields& single);
  std::optional<Written> measured(double number, std::string_view type, const StepValue& unit);

  const StepFile& file_;
  IfcUnits& units_;
  std::map<const IfcMaterial*, std::set<std::string>> names_;  ///< of the properties of each
};

}  // namespace veldra::kit

#endif
