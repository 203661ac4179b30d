// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/distinct_names.hpp"
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/ifc_model.hpp"
#include "kit/exchange/source_set.hpp"
#include "kit/exchange/writers.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/fields.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

/// Puts the objects of a model together for a library.
class IfcCatalogue {
 public:
  IfcCatalogue(const IfcModel& model, Unit unit, SharedObjects& shared, SourceReport& report)
      : model_(model), unit_(unit), shared_(shared), report_(report) {
    catalogue_.material_class = "IfcMaterial";
    catalogue_.composition_class = "IfcMaterialLayerSet";
    catalogue_.names_file_in_tags = true;
  }

  Catalogue make() {
    DistinctNames names;
    for (const auto& source : model_.materials) {
      const auto material =
          map_ifc(source, model_.length, unit_, shared_, teller("material", source));
      names_.push_back(
          names
              .name_for(material->name().utf8(), "", names_.size(),
                        [&](std::size_t other) { return model_.materials[other] == source; })
              .text);
      material->name(library_text(names_.back()));
      catalogue_.materials.push_back({material, source.line, source.not_kept});
    }
    for (const auto& set : model_.sets) add_air(set);
    for (const auto& set : model_.sets) {
      catalogue_.compositions.push_back(
          map_ifc(set, names_, model_.length, unit_, shared_, teller("layer set", set)));
    }
    return std::move(catalogue_);
  }

 private:
  template <class Source>
  TellProblem teller(const char* kind, const Source& source) {
    return [this, kind, &source](const std::string& sentence) {
      report_.problems.push_back({report_.file, source.line, source.name,
                                  fmt::format("{} {}: {}", kind, quoted(source.name), sentence),
                                  true});
    };
  }

  void add_air(const IfcLayerSet& set) {
    for (const auto& layer : set.layers) {
      bool& is_there = has_air_[layer.ventilated ? 1 : 0];
      if (layer.material != IfcLayer::air || is_there) continue;
      is_there = true;
      const auto name = ifc_air_name(layer);
      if (std::find(names_.begin(), names_.end(), name) != names_.end()) continue;
      auto air = Material::create(library_text(name));
      air->type(shared_.type("Air gap"));
      names_.push_back(name);
      catalogue_.materials.push_back({air, set.line, {}});
    }
  }

  const IfcModel& model_;
  Unit unit_;
  SharedObjects& shared_;
  SourceReport& report_;
  Catalogue catalogue_;
  std::vector<std::string> names_;  ///< of the materials of the model, and then of air
  bool has_air_[2] = {false, false};
};

class IfcContent : public SourceContent {
 public:
  explicit IfcContent(IfcModel model) : model_(std::move(model)) {}

  bool has_objects() const override { return !model_.materials.empty() || !model_.sets.empty(); }

  std::size_t made_together() const override {
    return model_.materials.size() + model_.sets.size();
  }

  void add_to(SourceSet& set, SourceReport& report) const override {
    report.format += ", " + model_.schema;
    report.problems.insert(report.problems.end(), model_.problems.begin(), model_.problems.end());
    for (const auto& [name, count] : model_.skipped) report.skipped[name] += count;
    set.add(IfcCatalogue(model_, set.unit(), set.shared(), report).make(), report);
  }

  void give_to(SourceSet& set, SourceReport& report) override {
    add_to(set, report);
    model_ = IfcModel();
  }

 private:
  IfcModel model_;
};

}  // namespace

FormatModule ifc_module() {
  return {"IFC",
          {"ifc"},
          [](const FileContent& content) { return !content.document && is_step(content.text); },
          [](FileContent content) -> std::shared_ptr<SourceContent> {
            return std::make_shared<IfcContent>(read_ifc(content.file, content.text));
          },
          write_ifc};
}

}  // namespace veldra::kit
