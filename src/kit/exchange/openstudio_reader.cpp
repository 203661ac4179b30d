// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/inch_pound.hpp"
#include "kit/exchange/source_fields.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace veldra::kit {

namespace {

using namespace source_fields;
using namespace inch_pound;

double factor_of(const std::string& key) {
  static const std::map<std::string, double> factors{{"thickness", inch},
                                                     {"conductivity", u_unit * inch},
                                                     {"resistance", 1 / u_unit},
                                                     {"density", pound / (foot * foot * foot)},
                                                     {"specific_heat", btu / (pound * fahrenheit)},
                                                     {"u_factor", u_unit}};
  const auto found = factors.find(key);
  return found != factors.end() ? found->second : 1;
}

std::vector<SourceField> origin_fields() {
  return {text("material_standard", "Material standard"),
          text("material_standard_source", "Material standard source"),
          text("code_category", "Code category"), text("code_identifier", "Code identifier"),
          text("notes", "Notes")};
}

std::vector<SourceField> with_origin(const std::vector<SourceField>& fields) {
  return joined(fields, origin_fields());
}

SourceField resistance() { return number("resistance", property::resistance); }

std::vector<SourceField> glazing_fields() {
  const std::vector<SourceField> glass{thickness(), number("conductivity", property::conductivity),
                                       optical_data_type()};
  return joined(joined(glass, optics_at_normal_incidence()), dirt_and_diffusion());
}

std::vector<SourceField> opaque_fields() {
  return joined(joined({roughness(), thickness()}, solid()), absorptances());
}

MaterialClasses make_classes() {
  const auto no_mass = joined({roughness(), resistance()}, absorptances());
  const std::vector<SourceField> simple{
      number("u_factor", source_property::u_factor),
      number("solar_heat_gain_coefficient", source_property::heat_gain),
      number("visible_transmittance", source_property::visible_transmittance)};
  const std::vector<SourceField> gas{thickness(), gas_type()};
  const auto generic =
      joined(joined(joined({roughness(), thickness()}, solid()), {resistance()}), absorptances());
  return {{"StandardOpaqueMaterial",
           "Opaque",
           required,
           with_origin(opaque_fields()),
           {"thickness", "conductivity", "density", "specific_heat"}},
          {"MasslessOpaqueMaterial", "No mass", none, with_origin(no_mass), {"resistance"}},
          {"AirGap", "Air gap", none, with_origin({resistance()}), {"resistance"}},
          {"StandardGlazing", "Glazing", required, with_origin(glazing_fields()), {"thickness"}},
          {"SimpleGlazing", "Simple glazing", none, with_origin(simple), {"u_factor"}},
          {"Gas", "Gas", required, with_origin(gas), {"gas_type", "thickness"}},
          {"GasMixture", "Gas mixture", required, with_origin({thickness()}), {"thickness"}},
          {"Generic", "Generic", required, with_origin(generic), {}},
          {"Generic", "Generic", none, with_origin(generic), {}}};
}

/// The class of that name, or the generic one with or without thickness.
const MaterialClass& class_of(const std::string& name, bool has_thickness) {
  static const auto classes = make_classes();
  const auto found = std::find_if(classes.begin(), classes.end(),
                                  [&](const auto& described) { return described.name == name; });
  if (found != classes.end() && name != "Generic") return *found;
  return has_thickness ? classes[classes.size() - 2] : classes.back();
}

const JsonNode* first_value(const JsonNode& node) {
  if (!node.elements().empty()) return &node.elements().front();
  return node.members().empty() ? nullptr : &node.members().front().value;
}

constexpr int deepest = 3;

/// Lists of materials and constructions, maybe below the names of standards.
bool is_openstudio_standards(const JsonNode& node, int depth = 0) {
  for (const char* list : {"materials", "constructions"}) {
    const JsonNode* objects = node.member(list);
    const JsonNode* first = objects != nullptr ? first_value(*objects) : nullptr;
    if (first == nullptr) continue;
    for (const char* member : {"material_type", "intended_surface_type", "materials_standard",
                               "material_standard", "construction_standard"}) {
      if (first->member(member) != nullptr) return true;
    }
  }
  if (depth == deepest) return false;
  return std::any_of(node.members().begin(), node.members().end(), [&](const auto& member) {
    return is_openstudio_standards(member.value, depth + 1);
  });
}

bool ends_with(const std::string& text, const std::string& ending) {
  return text.size() >= ending.size() &&
         text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

/// A ceiling is a roof to the room below it.
Composition::Type type_for(const std::string& surface) {
  if (ends_with(surface, "Wall")) return Composition::Type::Wall;
  if (ends_with(surface, "Roof") || ends_with(surface, "Ceiling")) return Composition::Type::Roof;
  return ends_with(surface, "Floor") ? Composition::Type::Floor : Composition::Type::Other;
}

/// Reads the objects of one document.
class StandardsReader {
 public:
  explicit StandardsReader(const std::string& file) : file_(file) {
    model_.note = "with units of inch and pound converted";
  }

  SourceModel read(const JsonNode& document) {
    read_lists(document, 0);
    return std::move(model_);
  }

 private:
  void read_lists(const JsonNode& node, int depth) {
    for (const auto& [key, value] : node.members()) {
      if (key == "materials") {
        for_each_object(value, [this](const JsonNode& object) { read_material(object); });
      } else if (key == "constructions") {
        for_each_object(value, [this](const JsonNode& object) { read_construction(object); });
      } else if (depth < deepest && value.kind == JsonNode::Kind::Object) {
        read_lists(value, depth + 1);
      } else if (value.kind == JsonNode::Kind::Array) {
        model_.skipped[key] += static_cast<unsigned>(value.elements().size());
      }
    }
  }

  template <class Work>
  void for_each_object(const JsonNode& list, Work work) {
    const auto take = [&](const JsonNode& node) {
      if (node.kind == JsonNode::Kind::Object) return work(node);
      model_.problems.push_back({file_, node.line, "", "an object is expected"});
    };
    for (const auto& element : list.elements()) take(element);
    for (const auto& member : list.members()) take(member.value);
  }

  template <class Object>
  static std::string text_of(const JsonNode& node, const char* key, Object& object) {
    const JsonNode* value = node.member(key);
    return value != nullptr ? scalar_text(*value, key, object.fault) : std::string();
  }

  static std::string converted(const std::string& text, const SourceField& field) {
    const double factor = factor_of(field.key);
    const auto number = factor != 1 ? number_in(text) : std::nullopt;
    return number ? exact_number(*number * factor) : text;
  }

  void read_material(const JsonNode& node) {
    SourceMaterial material;
    const auto type = text_of(node, "material_type", material);
    material.described = &class_of(type, !text_of(node, "thickness", material).empty());
    material.name = text_of(node, "name", material);
    material.line = node.line;
    if (material.described->name != type) tell_generic(material, type);
    std::set<std::string> known{"name", "material_type"};
    for (const auto& field : material.described->fields) {
      known.insert(field.key);
      const auto text = text_of(node, field.key, material);
      if (!text.empty()) material.values[field.key] = converted(text, field);
    }
    for (const auto& [key, value] : node.members()) {
      if (known.count(key) > 0 || (key == "resistance" && is_implied(node))) continue;
      add_not_kept(key, value, material.not_kept);
    }
    model_.materials.push_back(std::move(material));
  }

  /// Whether the resistance is that of the thickness and the conductivity, but for rounding.
  static bool is_implied(const JsonNode& node) {
    constexpr double rounding = 0.01;
    const auto number_at = [&](const char* key) {
      const JsonNode* value = node.member(key);
      return value != nullptr ? number_in(text_of_any(*value)).value_or(0) : 0;
    };
    const double conductivity = number_at("conductivity");
    if (conductivity == 0) return false;
    const double implied = number_at("thickness") / conductivity;
    return std::abs(number_at("resistance") - implied) <= rounding * std::abs(implied);
  }

  void tell_generic(const SourceMaterial& material, const std::string& type) {
    const auto reason = type.empty() ? std::string("it has no type")
                                     : fmt::format("its type {} is not known", quoted(type));
    model_.problems.push_back({file_, material.line, material.name,
                               fmt::format("material {}: {}; it is taken for a generic one",
                                           quoted(material.name), reason)});
  }

  static void add_not_kept(const std::string& key, const JsonNode& value, FieldsNotKept& fields) {
    const bool empty = value.kind == JsonNode::Kind::Null ||
                       (value.kind == JsonNode::Kind::Text && trimmed(value.text()).empty());
    if (!empty) fields.emplace_back(key, text_of_any(value));
  }

  void read_construction(const JsonNode& node) {
    static const std::map<std::string, const char*> properties{
        {"construction_standard", "Construction standard"},
        {"construction_standard_source", "Construction standard source"},
        {"standards_construction_type", "Construction type"},
        {"intended_surface_type", "Intended surface type"}};
    static const auto* described = construction_class("Construction");
    SourceConstruction construction;
    construction.described = described;
    construction.name = text_of(node, "name", construction);
    construction.line = node.line;
    construction.type = type_for(text_of(node, "intended_surface_type", construction));
    for (const auto& [key, value] : node.members()) {
      const auto property = properties.find(key);
      if (property != properties.end()) {
        const auto text = scalar_text(value, key, construction.fault);
        if (!text.empty()) construction.properties.emplace_back(property->second, text);
      } else if (key == "materials") {
        for (const auto& layer : value.elements()) {
          construction.layers.push_back(scalar_text(layer, key, construction.fault));
        }
      } else if (key != "name") {
        add_not_kept(key, value, construction.not_kept);
      }
    }
    model_.constructions.push_back(std::move(construction));
  }

  const std::string& file_;
  SourceModel model_;
};

}  // namespace

FormatModule openstudio_module() {
  return {"OpenStudio standards",
          {"json"},
          [](const FileContent& content) {
            return content.document && is_openstudio_standards(*content.document);
          },
          [](FileContent content) -> std::shared_ptr<SourceContent> {
            return std::make_shared<ModelContent>(
                StandardsReader(content.file).read(*content.document));
          },
          nullptr};
}

}  // namespace veldra::kit
