// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/ifc_global_id.hpp"
#include "kit/exchange/ifc_unmapping.hpp"
#include "kit/exchange/lost_values.hpp"
#include "kit/exchange/objects_by_name.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/exchange/written_identity.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <map>

namespace veldra::kit {

namespace {

/// A file that is written again is to be the same, so that no time stands in it.
constexpr const char* head =
    "ISO-10303-21;\n"
    "HEADER;\n"
    "FILE_DESCRIPTION(('ViewDefinition [NotAssigned]'),'2;1');\n"
    "FILE_NAME('library.ifc','1970-01-01T00:00:00',(''),(''),'veldra','veldra','');\n"
    "FILE_SCHEMA(('IFC4'));\n"
    "ENDSEC;\n"
    "DATA;\n";

constexpr const char* foot = "ENDSEC;\nEND-ISO-10303-21;\n";

/// A text, or nothing in place of an empty one.
std::string optional_text(const std::string& text) { return text.empty() ? "$" : step_text(text); }

std::string list_of(const std::vector<unsigned>& numbers) {
  return fmt::format("(#{})", fmt::join(numbers, ",#"));
}

/// A type of elements, and which of its kinds.
struct ElementType {
  const char* keyword;
  const char* predefined;
};

ElementType element_type(Composition::Type type) {
  switch (type) {
    case Composition::Type::Wall:
      return {"IFCWALLTYPE", "NOTDEFINED"};
    case Composition::Type::Floor:
      return {"IFCSLABTYPE", "FLOOR"};
    case Composition::Type::Roof:
      return {"IFCROOFTYPE", "NOTDEFINED"};
    case Composition::Type::Other:
      break;
  }
  return {"IFCBUILDINGELEMENTPROXYTYPE", "NOTDEFINED"};
}

/// The property of IFC that takes one that physics knows.
struct KnownProperty {
  const char* property;
  const char* set;
  const char* name;
  const char* measure;
};

constexpr KnownProperty known_properties[] = {
    {property::density, "Pset_MaterialCommon", "MassDensity", "IFCMASSDENSITYMEASURE"},
    {property::conductivity, "Pset_MaterialThermal", "ThermalConductivity",
     "IFCTHERMALCONDUCTIVITYMEASURE"},
    {property::specific_heat, "Pset_MaterialThermal", "SpecificHeatCapacity",
     "IFCSPECIFICHEATCAPACITYMEASURE"}};

/// Writes one library as a project library.
class IfcWriter {
 public:
  IfcWriter(const Library& library, const TextSink& sink, const WriteRules& rules)
      : library_(library), sink_(sink), progress_(rules.progress), identity_(library, rules) {}

  WriteReport write() {
    sink_(head);
    write_project();
    for_each_by_name<Material>(library_, [this](const Material& material, std::size_t) {
      write_material(material);
      if (progress_) progress_();
    });
    for_each_by_name<Composition>(library_, [this](const Composition& composition, std::size_t) {
      write_composition(composition);
      if (progress_) progress_();
    });
    if (!types_.empty()) declare("library", project_library_, types_);
    sink_(foot);
    report_.not_written = lost_.fields();
    return std::move(report_);
  }

 private:
  /// Writes an instance, and gives its number.
  unsigned add(const std::string& keyword, const std::string& values) {
    sink_(fmt::format("#{}={}({});\n", ++last_, keyword, values));
    return last_;
  }

  /// The GlobalId of something of the library, as a value.
  std::string id_of(const std::string& what) const {
    return step_text(ifc_global_id(fmt::format("{}/{}", identity_.guid(), what)));
  }

  std::string id_of(const Composition& composition, const char* role) const {
    return id_of(fmt::format("composition/{}/{}", identity_.id_of(composition), role));
  }

  unsigned si_unit(const char* type, const char* prefix, const char* name) {
    return add("IFCSIUNIT", fmt::format("*,.{}.,{},.{}.", type, prefix, name));
  }

  unsigned derived_unit(const char* type, const std::vector<std::pair<unsigned, int>>& parts) {
    std::vector<unsigned> elements;
    elements.reserve(parts.size());
    for (const auto& [unit, exponent] : parts) {
      elements.push_back(add("IFCDERIVEDUNITELEMENT", fmt::format("#{},{}", unit, exponent)));
    }
    return add("IFCDERIVEDUNIT", fmt::format("{},.{}.,$", list_of(elements), type));
  }

  unsigned length_unit(unsigned metre) {
    if (library_.unit() != Unit::Inches) return si_unit("LENGTHUNIT", ".MILLI.", "METRE");
    const auto dimensions = add("IFCDIMENSIONALEXPONENTS", "1,0,0,0,0,0,0");
    const auto inch = add("IFCMEASUREWITHUNIT", fmt::format("IFCLENGTHMEASURE(0.0254),#{}", metre));
    return add("IFCCONVERSIONBASEDUNIT",
               fmt::format("#{},.LENGTHUNIT.,'INCH',#{}", dimensions, inch));
  }

  unsigned write_units() {
    const auto metre = si_unit("LENGTHUNIT", "$", "METRE");
    const auto kilogram = si_unit("MASSUNIT", ".KILO.", "GRAM");
    const auto kelvin = si_unit("THERMODYNAMICTEMPERATUREUNIT", "$", "KELVIN");
    const auto watt = si_unit("POWERUNIT", "$", "WATT");
    const auto joule = si_unit("ENERGYUNIT", "$", "JOULE");
    std::vector<unsigned> all{length_unit(metre), kilogram, kelvin, watt, joule};
    all.push_back(derived_unit("MASSDENSITYUNIT", {{kilogram, 1}, {metre, -3}}));
    all.push_back(derived_unit("THERMALCONDUCTANCEUNIT", {{watt, 1}, {metre, -1}, {kelvin, -1}}));
    all.push_back(
        derived_unit("SPECIFICHEATCAPACITYUNIT", {{joule, 1}, {kilogram, -1}, {kelvin, -1}}));
    return add("IFCUNITASSIGNMENT", list_of(all));
  }

  void write_project() {
    const auto units = write_units();
    const auto origin = add("IFCCARTESIANPOINT", "(0.,0.,0.)");
    const auto axes = add("IFCAXIS2PLACEMENT3D", fmt::format("#{},$,$", origin));
    context_ =
        add("IFCGEOMETRICREPRESENTATIONCONTEXT", fmt::format("$,'Model',3,1.E-05,#{},$", axes));
    const auto project = add("IFCPROJECT", fmt::format("{},$,'veldra',$,$,$,$,(#{}),#{}",
                                                       id_of("project"), context_, units));
    project_library_ =
        add("IFCPROJECTLIBRARY", fmt::format("{},$,'veldra',$,$,$,$,$,$", id_of("library")));
    declare("project", project, {project_library_});
  }

  void declare(const char* role, unsigned context, const std::vector<unsigned>& definitions) {
    add("IFCRELDECLARES", fmt::format("{},$,$,$,#{},{}", id_of(fmt::format("{}/declares", role)),
                                      context, list_of(definitions)));
  }

  void write_material(const Material& material) {
    const auto [source, back] = unmap_ifc(material, library_.unit());
    lost_.compare(material, *back);
    const auto number = add("IFCMATERIAL", fmt::format("{},{},{}", step_text(source.name),
                                                       optional_text(source.description),
                                                       optional_text(source.category)));
    materials_[material.id()] = number;
    for (const char* set : {"Pset_MaterialCommon", "Pset_MaterialThermal"}) {
      write_properties(set, known_values(source, set), number);
    }
    write_properties(ifc_own_set, own_values(source.own), number);
    write_classification(source.classification, number);
    write_style(source, number);
    ++report_.written["IfcMaterial"];
  }

  unsigned single_value(const std::string& name, const std::string& value) {
    return add("IFCPROPERTYSINGLEVALUE", fmt::format("{},$,{},$", step_text(name), value));
  }

  std::vector<unsigned> known_values(const IfcMaterial& source, const std::string& set) {
    std::vector<unsigned> values;
    for (const auto& known : known_properties) {
      for (const auto& [name, value] : source.properties) {
        if (known.set != set || known.property != name) continue;
        values.push_back(single_value(
            known.name,
            fmt::format("{}({})", known.measure, step_real(number_in(value).value_or(0)))));
      }
    }
    return values;
  }

  /// Numbers are of use to other programs.
  std::vector<unsigned> own_values(const IfcValues& own) {
    std::vector<unsigned> values;
    values.reserve(own.size());
    for (const auto& [name, value] : own) {
      const auto number = number_in(value);
      const bool is_number = number && exact_number(*number) == value;
      values.push_back(single_value(name, is_number
                                              ? fmt::format("IFCREAL({})", step_real(*number))
                                              : fmt::format("IFCTEXT({})", step_text(value))));
    }
    return values;
  }

  void write_properties(const std::string& set, const std::vector<unsigned>& values,
                        unsigned material) {
    if (values.empty()) return;
    add("IFCMATERIALPROPERTIES",
        fmt::format("{},$,{},#{}", step_text(set), list_of(values), material));
  }

  void write_classification(const std::string& classification, unsigned material) {
    if (classification.empty()) return;
    const auto reference =
        add("IFCCLASSIFICATIONREFERENCE", fmt::format("$,$,{},$,$,$", step_text(classification)));
    add("IFCEXTERNALREFERENCERELATIONSHIP", fmt::format("$,$,#{},(#{})", reference, material));
  }

  unsigned write_color(const Color& color) {
    return add("IFCCOLOURRGB", fmt::format("$,{},{},{}", step_real(color.red),
                                           step_real(color.green), step_real(color.blue)));
  }

  void write_style(const IfcMaterial& source, unsigned material) {
    std::vector<unsigned> styles;
    if (source.shading_color) {
      const auto shading =
          add("IFCSURFACESTYLERENDERING",
              fmt::format("#{},{},$,$,$,$,$,$,.NOTDEFINED.", write_color(*source.shading_color),
                          step_real(1 - source.shading_color->alpha)));
      styles.push_back(add("IFCSURFACESTYLE", fmt::format("$,.BOTH.,(#{})", shading)));
    }
    if (source.cut_pattern_color) {
      styles.push_back(add("IFCFILLAREASTYLE",
                           fmt::format("$,(#{}),$", write_color(*source.cut_pattern_color))));
    }
    if (styles.empty()) return;
    const auto item = add("IFCSTYLEDITEM", fmt::format("$,{},$", list_of(styles)));
    const auto representation =
        add("IFCSTYLEDREPRESENTATION", fmt::format("#{},'Style','Material',(#{})", context_, item));
    add("IFCMATERIALDEFINITIONREPRESENTATION",
        fmt::format("$,$,(#{}),#{}", representation, material));
  }

  void write_composition(const Composition& composition) {
    if (composition.layers().empty()) return refuse(composition, "it has no layers");
    for (const auto& layer : composition.layers()) {
      if (!layer.material()) return refuse(composition, "a layer is without material");
    }
    const auto [source, back] = unmap_ifc(composition, library_.unit());
    lost_.compare(composition, *back);
    const auto set = add("IFCMATERIALLAYERSET",
                         fmt::format("{},{},{}", list_of(write_layers(composition, source)),
                                     step_text(source.name), optional_text(source.description)));
    const auto type = write_type(composition, source);
    add("IFCRELASSOCIATESMATERIAL",
        fmt::format("{},$,$,$,(#{}),#{}", id_of(composition, "material"), type, set));
    types_.push_back(type);
    ++report_.written["IfcMaterialLayerSet"];
  }

  std::vector<unsigned> write_layers(const Composition& composition, const IfcLayerSet& source) {
    std::vector<unsigned> layers;
    for (const auto& layer : source.layers) {
      const auto material = composition.layers()[layers.size()].material()->id();
      layers.push_back(
          add("IFCMATERIALLAYER",
              fmt::format("#{},{},$,$,$,{},$", materials_.at(material), step_real(layer.thickness),
                          layer.structural ? "'LoadBearing'" : "$")));
    }
    return layers;
  }

  unsigned write_type(const Composition& composition, const IfcLayerSet& source) {
    auto own = source.own;
    own.emplace_back(ifc_layer_order, ifc_from_outside);
    const auto values = own_values(own);
    const auto properties =
        add("IFCPROPERTYSET", fmt::format("{},$,'{}',$,{}", id_of(composition, "properties"),
                                          ifc_own_set, list_of(values)));
    const auto [keyword, predefined] = element_type(source.type);
    return add(keyword, fmt::format("{},$,{},$,$,(#{}),$,$,$,.{}.", id_of(composition, "type"),
                                    step_text(source.name), properties, predefined));
  }

  void refuse(const Composition& composition, const char* reason) {
    report_.problems.push_back(fmt::format("composition {} is not written: {}",
                                           quoted(composition.name().utf8()), reason));
  }

  const Library& library_;
  const TextSink& sink_;
  const Progress& progress_;
  WrittenIdentity identity_;
  unsigned last_ = 0;
  unsigned context_ = 0;
  unsigned project_library_ = 0;
  std::map<unsigned, unsigned> materials_;  ///< the numbers of their instances, by their ids
  std::vector<unsigned> types_;
  LostValues lost_;
  WriteReport report_;
};

}  // namespace

WriteReport write_ifc(const Library& library, const TextSink& sink, const WriteRules& rules) {
  return IfcWriter(library, sink, rules).write();
}

}  // namespace veldra::kit
