// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/ifc_model.hpp"
#include "kit/exchange/ifc_properties.hpp"
#include "kit/exchange/ifc_styles.hpp"
#include "kit/exchange/ifc_users.hpp"
#include "kit/exchange/problem.hpp"
#include "kit/exchange/step_file.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>

namespace veldra::kit {

namespace {

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

bool ends_with(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

/// What a library has no place for, as sentences call it.
constexpr std::pair<std::string_view, const char*> skipped_classes[] = {
    {"IFCMATERIALCONSTITUENTSET", "IfcMaterialConstituentSet"},
    {"IFCMATERIALPROFILESET", "IfcMaterialProfileSet"},
    {"IFCMATERIALLIST", "IfcMaterialList"},
    {"IFCFUELPROPERTIES", "IfcFuelProperties"},
    {"IFCWATERPROPERTIES", "IfcWaterProperties"},
    {"IFCPRODUCTSOFCOMBUSTIONPROPERTIES", "IfcProductsOfCombustionProperties"}};

constexpr const char* layer_classes[] = {"IFCMATERIALLAYER", "IFCMATERIALLAYERWITHOFFSETS"};

/// More than any build-up has.
constexpr std::size_t most_layers = 10000;

/// The instances that are read; a model has many times more of others.
bool is_wanted(std::string_view keyword) {
  static const std::unordered_set<std::string_view> others{"IFCPROJECT",
                                                           "IFCUNITASSIGNMENT",
                                                           "IFCSIUNIT",
                                                           "IFCCONVERSIONBASEDUNIT",
                                                           "IFCCONVERSIONBASEDUNITWITHOFFSET",
                                                           "IFCDERIVEDUNIT",
                                                           "IFCDERIVEDUNITELEMENT",
                                                           "IFCMEASUREWITHUNIT",
                                                           "IFCEXTERNALREFERENCERELATIONSHIP",
                                                           "IFCCLASSIFICATION",
                                                           "IFCCLASSIFICATIONREFERENCE",
                                                           "IFCCLASSIFICATIONNOTATION",
                                                           "IFCCLASSIFICATIONNOTATIONFACET",
                                                           "IFCRELASSOCIATESCLASSIFICATION",
                                                           "IFCRELASSOCIATESMATERIAL",
                                                           "IFCRELDEFINESBYTYPE",
                                                           "IFCPROPERTYSET",
                                                           "IFCPROPERTYSINGLEVALUE",
                                                           "IFCPROPERTYENUMERATEDVALUE",
                                                           "IFCPROPERTYBOUNDEDVALUE",
                                                           "IFCPROPERTYLISTVALUE",
                                                           "IFCPROPERTYTABLEVALUE",
                                                           "IFCPROPERTYREFERENCEVALUE",
                                                           "IFCCOMPLEXPROPERTY",
                                                           "IFCSTYLEDREPRESENTATION",
                                                           "IFCSTYLEDITEM",
                                                           "IFCPRESENTATIONSTYLEASSIGNMENT",
                                                           "IFCSURFACESTYLE",
                                                           "IFCSURFACESTYLESHADING",
                                                           "IFCSURFACESTYLERENDERING",
                                                           "IFCFILLAREASTYLE",
                                                           "IFCFILLAREASTYLEHATCHING",
                                                           "IFCCURVESTYLE",
                                                           "IFCCOLOURRGB",
                                                           "IFCDRAUGHTINGPREDEFINEDCOLOUR",
                                                           "IFCROOF",
                                                           "IFCFUELPROPERTIES",
                                                           "IFCWATERPROPERTIES",
                                                           "IFCPRODUCTSOFCOMBUSTIONPROPERTIES",
                                                           "IFCPLATE",
                                                           "IFCMEMBER",
                                                           "IFCBEAM",
                                                           "IFCCOLUMN",
                                                           "IFCFOOTING",
                                                           "IFCBUILDINGELEMENTPROXY",
                                                           "IFCCURTAINWALL",
                                                           "IFCBUILDINGELEMENTPART",
                                                           "IFCRAMP",
                                                           "IFCRAMPFLIGHT",
                                                           "IFCRAILING",
                                                           "IFCSTAIR",
                                                           "IFCSTAIRFLIGHT",
                                                           "IFCDOOR",
                                                           "IFCWINDOW"};
  if (others.count(keyword) > 0) return true;
  if (begins_with(keyword, "IFCREL")) return false;
  for (const char* beginning : {"IFCMATERIAL", "IFCWALL", "IFCSLAB", "IFCCOVERING"}) {
    if (begins_with(keyword, beginning)) return true;
  }
  return ends_with(keyword, "MATERIALPROPERTIES") || ends_with(keyword, "TYPE");
}

/// Reads the objects of one model.
class IfcReader {
 public:
  IfcReader(const std::string& file, std::string_view text)
      : file_(file), step_(file, text, is_wanted), units_(step_) {
    const auto schema = step_.schema();
    if (!begins_with(schema, "IFC2X") && !begins_with(schema, "IFC4")) {
      fail_at(file, 0,
              fmt::format("this is an IFC model of the schema {}; those of IFC2X3 and IFC4 can be "
                          "read",
                          quoted(schema)));
    }
    model_.schema = schema;
  }

  IfcModel read() {
    read_length_unit();
    read_materials();
    IfcProperties(step_, units_).read([this](const StepValue& reference) {
      return material_of(reference);
    });
    IfcStyles(step_).read([this](const StepValue& reference) { return material_of(reference); });
    read_layer_sets();
    tell_air();
    tell_order();
    count_skipped();
    return std::move(model_);
  }

 private:
  void tell(const std::string& sentence) {
    model_.problems.push_back({file_, 0, "", sentence, true});
  }

  void read_length_unit() {
    const auto unit = units_.of("LENGTHUNIT");
    if (unit) {
      model_.length = *unit;
    } else {
      tell("the model does not say the unit of its lengths; they are taken for metres");
    }
  }

  std::string label(const StepFields& fields, std::size_t place) const {
    return fields[place].content().text().value_or("");
  }

  void read_materials() {
    for (const auto* instance : step_.all("IFCMATERIAL")) {
      const auto fields = step_.fields_of(*instance);
      IfcMaterial material;
      material.name = label(fields, 0);
      if (material.name.empty()) material.name = fmt::format("Material #{}", instance->number);
      material.description = label(fields, 1);
      material.category = label(fields, 2);
      material.line = instance->line;
      places_.emplace(instance->number, model_.materials.size());
      model_.materials.push_back(std::move(material));
    }
  }

  IfcMaterial* material_of(const StepValue& reference) {
    const auto number = reference.reference();
    const auto found = number ? places_.find(*number) : places_.end();
    return found != places_.end() ? &model_.materials[found->second] : nullptr;
  }

  void read_layer_sets() {
    const IfcUsers users(step_);
    for (const auto* instance : step_.all("IFCMATERIALLAYERSET")) {
      read_layer_set(*instance, users.of(instance->number));
    }
  }

  void read_layer_set(const StepInstance& instance, const IfcUse& use) {
    const auto fields = step_.fields_of(instance);
    IfcLayerSet set;
    set.line = instance.line;
    set.name = label(fields, 1);
    if (set.name.empty()) set.name = use.name;
    if (set.name.empty()) set.name = fmt::format("Layer set #{}", instance.number);
    set.description = label(fields, 2);
    set.type = use.type();
    if (use.own_set != nullptr) {
      set.own = IfcProperties(step_, units_).values_of_set(*use.own_set);
    }
    std::string fault;
    fields[0].for_each([&](const StepValue& reference) {
      if (fault.empty()) fault = read_layer(reference, set);
    });
    if (set.layers.size() > most_layers) fault = fmt::format("it has {} layers", set.layers.size());
    if (set.layers.empty() && fault.empty()) fault = "it has no layers and is not imported";
    if (fault.empty()) {
      arrange(use, set);
      return model_.sets.push_back(std::move(set));
    }
    model_.problems.push_back({file_, set.line, set.name,
                               fmt::format("layer set {}: {}", quoted(set.name), fault), false});
  }

  /// Gives why the layer cannot be read; nothing if it can.
  std::string read_layer(const StepValue& reference, IfcLayerSet& set) {
    const auto* instance = step_.find(reference);
    const bool is_layer =
        instance != nullptr &&
        std::count(std::begin(layer_classes), std::end(layer_classes), instance->keyword) > 0;
    if (!is_layer)
      return fmt::format("{} is no layer", quoted(std::string(reference.written().substr(0, 40))));
    const auto fields = step_.fields_of(*instance);
    const auto thickness = fields[1].content().number();
    if (!thickness)
      return fmt::format("the thickness of layer #{} is not a number", instance->number);
    if (*thickness < 0)
      return fmt::format("the thickness {} of layer #{} is negative", exact_number(*thickness),
                         instance->number);
    IfcLayer layer;
    layer.thickness = *thickness;
    layer.ventilated = fields[2].enumeration() == "T";
    if (!fields[0].is_missing()) {
      const auto number = fields[0].reference();
      const auto found = number ? places_.find(*number) : places_.end();
      if (found == places_.end())
        return fmt::format("the material of layer #{} is not in the model", instance->number);
      layer.material = found->second;
    }
    layer.structural = is_load_bearing(label(fields, 5));
    keep_rest(fields, layer, set);
    set.layers.push_back(layer);
    return {};
  }

  static bool is_load_bearing(const std::string& category) {
    std::string word;
    for (const char c : lower_case(category)) {
      if (c != ' ' && c != '-' && c != '_') word += c;
    }
    return word == "loadbearing";
  }

  /// What a library has no place for in a layer.
  void keep_rest(const StepFields& fields, const IfcLayer& layer, IfcLayerSet& set) {
    const auto keep = [&](const char* field, const std::string& value) {
      if (value.empty()) return;
      set.not_kept.emplace_back(fmt::format("MaterialLayers.{}.{}", set.layers.size() + 1, field),
                                value);
    };
    const bool is_air = layer.material == IfcLayer::air;
    const auto name = label(fields, 3);
    if (is_air || name != model_.materials[layer.material].name) keep("Name", name);
    if (!is_air && layer.ventilated) keep("IsVentilated", "T");
    keep("Description", label(fields, 4));
    if (!layer.structural) keep("Category", label(fields, 5));
    for (const auto& [place, field] : {std::pair{6, "Priority"}, std::pair{7, "OffsetDirection"},
                                       std::pair{8, "OffsetValues"}}) {
      if (!fields[place].is_missing()) keep(field, std::string(fields[place].written()));
    }
  }

  /// Layers of a library stand from outside to inside.
  void arrange(const IfcUse& use, IfcLayerSet& set) {
    const auto order = own_order(set);
    if (order || use.order == IfcUse::Order::FromOutside) return;
    if (use.order == IfcUse::Order::FromInside) {
      std::reverse(set.layers.begin(), set.layers.end());
      return;
    }
    const auto same = [](const IfcLayer& one, const IfcLayer& other) {
      return one.material == other.material && one.thickness == other.thickness &&
             one.ventilated == other.ventilated && one.structural == other.structural;
    };
    if (std::equal(set.layers.begin(), set.layers.end(), set.layers.rbegin(), same)) return;
    of_unknown_order_.push_back(set.name);
  }

  /// Whether the set of values says that layers stand as in a library.
  static bool own_order(IfcLayerSet& set) {
    const auto found = std::find_if(set.own.begin(), set.own.end(), [](const auto& value) {
      return value.first == ifc_layer_order;
    });
    if (found == set.own.end()) return false;
    const bool from_outside = found->second == ifc_from_outside;
    set.own.erase(found);
    return from_outside;
  }

  static std::string names_in(const std::vector<std::string>& names) {
    constexpr std::size_t most = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), most); ++i) {
      text += (i == 0 ? "" : ", ") + quoted(names[i]);
    }
    if (names.size() > most) text += fmt::format(" and {} more", names.size() - most);
    return text;
  }

  void tell_order() {
    if (of_unknown_order_.empty()) return;
    tell(
        fmt::format("the model does not say which side of {} is outside; the layers stand in the "
                    "order of the file",
                    names_in(of_unknown_order_)));
  }

  void tell_air() {
    std::size_t count = 0;
    for (const auto& set : model_.sets) {
      for (const auto& layer : set.layers) count += layer.material == IfcLayer::air ? 1 : 0;
    }
    if (count == 0) return;
    tell(fmt::format("{} without material {} taken for air",
                     count == 1 ? "a layer" : fmt::format("{} layers", count),
                     count == 1 ? "is" : "are"));
  }

  void count_skipped() {
    for (const auto& [keyword, name] : skipped_classes) {
      const auto count = step_.all(keyword).size();
      if (count > 0) model_.skipped[name] = static_cast<unsigned>(count);
    }
  }

  const std::string& file_;
  StepFile step_;
  IfcUnits units_;
  IfcModel model_;
  std::map<std::uint64_t, std::size_t> places_;  ///< of materials, by the number of the instance
  std::vector<std::string> of_unknown_order_;
};

}  // namespace

IfcModel read_ifc(const std::string& file, std::string_view text) {
  return IfcReader(file, text).read();
}

}  // namespace veldra::kit
