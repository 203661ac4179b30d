// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/model_writer.hpp"

#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/physics.hpp>
#include <veldra/kit/text.hpp>

#include "kit/exchange/lost_values.hpp"
#include "kit/exchange/objects_by_name.hpp"
#include "kit/text/quoted.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace veldra::kit {

namespace {

constexpr double no_thickness = -1;

bool can_be_thickness(double thickness) { return std::isfinite(thickness) && thickness >= 0; }

/// A material that is written: one of the library in one of its thicknesses.
struct Part {
  unsigned id;
  const MaterialClass* described;
  double thickness;  ///< in the unit of the library, or `no_thickness`
  std::string name;
};

/// Gives out names that a format can hold, each once.
class Names {
 public:
  explicit Names(const ModelFormat& format) : format_(format) {}

  /// A free name that is like the wanted one as far as that can be.
  std::string take(const std::string& wanted) {
    std::string name = format_.name_for(wanted);
    if (name.empty()) name = "unnamed";
    std::string free = name;
    for (unsigned number = 2; !taken_.insert(key_of(free)).second; ++number) {
      free = fmt::format("{} ({})", name, number);
    }
    return free;
  }

  bool has(const std::string& name) const { return taken_.count(key_of(name)) > 0; }

 private:
  std::string key_of(const std::string& name) const {
    return format_.ignores_case ? lower_case(name) : name;
  }

  const ModelFormat& format_;
  std::set<std::string> taken_;
};

/// Writes one library.
class ModelWriter {
 public:
  ModelWriter(const Library& library, const ModelFormat& format, const ModelSink& sink,
              const Progress& progress)
      : library_(library),
        format_(format),
        sink_(sink),
        progress_(progress),
        material_names_(format),
        construction_names_(format) {}

  WriteReport write() {
    find_thicknesses();
    find_parts();
    for (const auto& described : format_.classes) write_class(described);
    write_compositions();
    report_.not_written = lost_.fields();
    report_.missing = missing_.fields();
    return std::move(report_);
  }

 private:
  /// The thicknesses that the layers of each material have.
  void find_thicknesses() {
    library_.for_each<Composition>([&](const std::shared_ptr<Composition>& composition) {
      for (const auto& layer : composition->layers()) {
        if (!layer.material() || !can_be_thickness(layer.thickness())) continue;
        in_layers_[layer.material()->id()].insert(layer.thickness());
      }
      return true;
    });
  }

  /// Materials get their own names first, so that no other thickness of another one takes them.
  void find_parts() {
    std::map<unsigned, std::vector<double>> others;
    for_each_by_name<Material>(library_, [&](const Material& material, std::size_t) {
      if (!material.mark().empty()) ++marks_[material.mark().utf8()];
      auto thicknesses = thicknesses_of(material);
      const bool has_thickness = can_have_thickness(material, thicknesses);
      const auto& described = class_for(material, format_.classes, has_thickness);
      if (described.default_thickness < 0) thicknesses = {no_thickness};
      if (thicknesses.empty()) return refuse(material, "it has no thickness");
      const auto name = material.name().utf8();
      const auto own = material_names_.take(name);
      if (own != name) tell_name(material, own);
      add_part({material.id(), &described, thicknesses.front(), own});
      thicknesses.erase(thicknesses.begin());
      if (!thicknesses.empty()) others[material.id()] = std::move(thicknesses);
    });
    for_each_by_name<Material>(library_, [&](const Material& material, std::size_t) {
      const auto found = others.find(material.id());
      if (found != others.end()) add_other_thicknesses(material, found->second);
    });
  }

  /// Layers of a material without thickness have the thickness 0.
  static bool can_have_thickness(const Material& material, const std::vector<double>& thicknesses) {
    return !material.thicknesses().empty() ||
           std::any_of(thicknesses.begin(), thicknesses.end(),
                       [](double thickness) { return thickness > 0; });
  }

  /// The thickness of the material itself, and those of its layers. What it is offered in besides
  /// has no place in any format.
  std::vector<double> thicknesses_of(const Material& material) const {
    std::vector<double> result;
    const auto& own = material.thicknesses();
    if (!own.empty() && can_be_thickness(*own.begin())) result.push_back(*own.begin());
    const auto found = in_layers_.find(material.id());
    if (found == in_layers_.end()) return result;
    for (const double thickness : found->second) {
      if (result.empty() || thickness != result.front()) result.push_back(thickness);
    }
    return result;
  }

  void add_other_thicknesses(const Material& material, const std::vector<double>& thicknesses) {
    const auto* described = parts_[first_parts_.at(material.id())].described;
    const auto unit = name_of(library_.unit());
    for (const double thickness : thicknesses) {
      const auto name = material_names_.take(
          fmt::format("{} ({} {})", material.name().utf8(), exact_number(thickness), unit));
      add_part({material.id(), described, thickness, name});
      report_.problems.push_back(fmt::format("material {}: in layers of {} {} it is written as {}",
                                             quoted(material.name().utf8()),
                                             exact_number(thickness), unit, quoted(name)));
    }
  }

  void add_part(Part part) {
    first_parts_.emplace(part.id, parts_.size());
    by_thickness_.emplace(std::make_pair(part.id, part.thickness), parts_.size());
    by_class_[part.described].push_back(parts_.size());
    parts_.push_back(std::move(part));
  }

  void write_class(const MaterialClass& described) {
    const auto found = by_class_.find(&described);
    if (found == by_class_.end()) return;
    for_each_listed<Material>(
        library_, found->second, [this](std::size_t index) { return parts_[index].id; },
        [&](const Material& material, std::size_t place) {
          write_part(material, found->second[place]);
          if (progress_) progress_();
        });
  }

  void write_part(const Material& material, std::size_t index) {
    const Part& part = parts_[index];
    auto source = source_of(material, part);
    if (first_parts_.at(part.id) == index) tell_lost(material, source);
    for (const auto& key : part.described->required) {
      if (!has_field(source, key)) missing_.add(part.described->name, key);
    }
    ++report_.written[part.described->name];
    sink_.material(source);
  }

  SourceMaterial source_of(const Material& material, const Part& part) const {
    std::optional<double> thickness;
    if (part.thickness != no_thickness) thickness = part.thickness;
    auto source =
        unmap_material(material, *part.described, thickness, library_.unit(), format_.holds);
    source.name = part.name;
    source.identifier = is_own_identifier(source.identifier, part) ? source.identifier : "";
    source.description = description_of(material);
    return source;
  }

  /// What several objects have identifies none of them, and a material is not to have what is the
  /// name of another one.
  bool is_own_identifier(const std::string& identifier, const Part& part) const {
    if (!format_.has_identifiers || identifier.empty()) return false;
    const bool is_first = &parts_[first_parts_.at(part.id)] == &part;
    const auto found = marks_.find(identifier);
    const bool once = found != marks_.end() && found->second == 1;
    return is_first && once && (identifier == part.name || !material_names_.has(identifier)) &&
           trimmed(identifier) == identifier;
  }

  /// The material that the reader would make.
  std::shared_ptr<Material> mapped_back(SourceMaterial source, const String& name) const {
    SharedObjects shared;
    if (format_.read_as != nullptr) source.described = &format_.read_as(source);
    auto material = map_material(source, library_.unit(), shared);
    for (const auto& [key, value] : source.not_kept) {
      keep_unknown(*material, source.described->name, key, value, shared);
    }
    material->name(name);
    return material;
  }

  void tell_lost(const Material& material, const SourceMaterial& source) {
    lost_.compare(material, *mapped_back(source, material.name()));
  }

  void write_compositions() {
    std::map<const ConstructionClass*, std::vector<unsigned>> by_class;
    for_each_by_name<Composition>(library_, [&](const Composition& composition, std::size_t) {
      by_class[&class_for(composition)].push_back(composition.id());
      const auto identifier = identifier_of(composition);
      if (!identifier.empty()) ++identifiers_[identifier];
    });
    for (const auto& entry : by_class) {
      for_each_listed<Composition>(
          library_, entry.second, [](unsigned id) { return id; },
          [this](const Composition& composition, std::size_t) {
            write_composition(composition);
            if (progress_) progress_();
          });
    }
  }

  void write_composition(const Composition& composition) {
    const auto count = composition.layers().size();
    if (count == 0) return refuse(composition, "it has no layers");
    if (count > format_.most_layers) {
      return refuse(composition, fmt::format("it has {} layers, of which the format takes {}",
                                             count, format_.most_layers));
    }
    SourceConstruction source;
    source.described = &class_for(composition);
    for (const auto& layer : composition.layers()) {
      const Part* part = part_of(layer);
      if (part == nullptr) return refuse(composition, missing_material(layer));
      source.layers.push_back(part->name);
    }
    const auto name = composition.name().utf8();
    source.name = construction_names_.take(name);
    if (source.name != name) tell_name(composition, source.name);
    for (auto& [key, value] : unknown_fields(composition, source.described->name)) {
      if (!format_.holds_of_construction(*source.described, key, value)) continue;
      source.not_kept.emplace_back(key, value);
    }
    const auto identifier = identifier_of(composition);
    const bool identifies = format_.has_identifiers && !identifier.empty() &&
                            identifiers_[identifier] == 1 && trimmed(identifier) == identifier;
    if (identifies) source.identifier = identifier;
    source.description = description_of(composition);
    source.transmittance = transmittance_of(composition);
    lost_.compare(composition, *mapped_back(source, composition));
    ++report_.written[source.described->name];
    sink_.construction(source);
  }

  template <class T>
  std::string description_of(const T& object) const {
    auto text = object.description().utf8();
    const bool holds = format_.holds_description != nullptr && format_.holds_description(text);
    return holds ? text : std::string();
  }

  /// What the composition states, or what its layers say; empty if that is not known.
  std::string transmittance_of(const Composition& composition) const {
    if (!format_.has_transmittances) return {};
    const auto known = transmission_of(composition, library_.unit()).transmittance();
    return known && std::isfinite(*known) ? exact_number(*known) : std::string();
  }

  const Part* part_of(const Composition::Layer& layer) const {
    if (!layer.material()) return nullptr;
    const unsigned id = layer.material()->id();
    const auto exact = by_thickness_.find({id, layer.thickness()});
    if (exact != by_thickness_.end()) return &parts_[exact->second];
    const auto first = first_parts_.find(id);
    return first != first_parts_.end() ? &parts_[first->second] : nullptr;
  }

  static std::string missing_material(const Composition::Layer& layer) {
    if (!layer.material()) return "a layer is without material";
    return fmt::format("its material {} is not", quoted(layer.material()->name().utf8()));
  }

  /// The composition that the reader would make.
  std::shared_ptr<Composition> mapped_back(const SourceConstruction& source,
                                           const Composition& composition) const {
    SharedObjects shared;
    std::vector<std::shared_ptr<Material>> materials;
    for (const auto& layer : composition.layers()) {
      const auto& material = *layer.material();
      materials.push_back(mapped_back(source_of(material, *part_of(layer)), material.name()));
    }
    auto result = map_construction(source, map_layers(materials), shared);
    if (!source.transmittance.empty()) {
      keep_transmittance(*result, source.transmittance, library_.unit(), shared);
    }
    for (const auto& [key, value] : source.not_kept) {
      keep_unknown(*result, source.described->name, key, value, shared);
    }
    result->name(composition.name());
    return result;
  }

  template <class T>
  static std::string called(const T& object) {
    return fmt::format("{} {}", singular_of(ObjectTraits<T>::type), quoted(object.name().utf8()));
  }

  template <class T>
  void refuse(const T& object, const std::string& reason) {
    report_.problems.push_back(fmt::format("{} is not written: {}", called(object), reason));
  }

  template <class T>
  void tell_name(const T& object, const std::string& name) {
    report_.problems.push_back(
        fmt::format("{} is written as {}, as {} cannot hold its name or has it already",
                    called(object), quoted(name), format_.name));
  }

  const Library& library_;
  const ModelFormat& format_;
  const ModelSink& sink_;
  const Progress& progress_;
  Names material_names_;
  Names construction_names_;
  std::map<unsigned, std::set<double>> in_layers_;
  std::map<std::string, unsigned> marks_;        ///< how many materials have each
  std::map<std::string, unsigned> identifiers_;  ///< the same of compositions
  std::vector<Part> parts_;
  std::map<unsigned, std::size_t> first_parts_;  ///< by the id of the material
  std::map<std::pair<unsigned, double>, std::size_t> by_thickness_;
  std::map<const MaterialClass*, std::vector<std::size_t>> by_class_;
  LostValues lost_;
  FieldCounts missing_;
  WriteReport report_;
};

}  // namespace

WriteReport write_model(const Library& library, const ModelFormat& format, const ModelSink& sink,
                        const Progress& progress) {
  return ModelWriter(library, format, sink, progress).write();
}

}  // namespace veldra::kit
