// SPDX-License-Identifier: GPL-2.0-or-later
#include "import/import_set.hpp"

#include "failure.hpp"
#include "import/mapping.hpp"
#include "import/place.hpp"
#include "kinds.hpp"
#include "numbers.hpp"
#include "same_values.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <cmath>
#include <filesystem>

namespace veldra_tool {

namespace {

using MaterialNames = IncomingObjects<veldra::Material>::Names;

/// Whether two incoming objects are the same but for the case of their names. Tags that tell where
/// an object came from do not count.
template <class T>
bool same_objects(const Incoming<T>& left, const Incoming<T>& right) {
  const auto object = left.object->clone();
  const auto other = right.object->clone();
  other->name(object->name());
  if (left.tagged_by_origin || right.tagged_by_origin) {
    other->tags(veldra::toModify) = object->tags();
  }
  return same_values(*object, *other);
}

template <class T>
std::string kind_of(const T&) {
  return singular_of(veldra::ObjectTraits<T>::type);
}

std::map<Outcome, unsigned>& outcomes_of(const veldra::Material&, SourceReport& report) {
  return report.materials;
}

std::map<Outcome, unsigned>& outcomes_of(const veldra::Composition&, SourceReport& report) {
  return report.compositions;
}

/// Of an object whose class has fields that no library has a place for.
template <class SourceObject>
void count_dropped(const SourceObject& object, SourceReport& report) {
  if (object.dropped == 0) return;
  report.dropped[fmt::format("fields of {}", object.described->name)] += object.dropped;
}

/// A name with a number that no object has.
template <class T>
std::string free_name(const IncomingObjects<T>& objects, const std::string& name) {
  using Names = typename IncomingObjects<T>::Names;
  for (unsigned number = 2;; ++number) {
    std::string candidate = fmt::format("{} ({})", name, number);
    if (!objects.taken(candidate, Names::Folded)) return candidate;
  }
}

}  // namespace

template <class T>
std::shared_ptr<T> IncomingObjects<T>::find(const std::string& name, std::size_t source,
                                            Names names) const {
  const auto exact = exact_.find(name);
  if (names == Names::Exact && exact != exact_.end()) return all_[exact->second].object;
  const auto own = own_.find({source, kit::lower_case(name)});
  if (own != own_.end()) return all_[own->second].object;
  const auto* other = taken(name, Names::Folded);
  return other ? other->object : nullptr;
}

template <class T>
const Incoming<T>* IncomingObjects<T>::taken(const std::string& name, Names names) const {
  const auto& index = names == Names::Exact ? exact_ : folded_;
  const auto found = index.find(names == Names::Exact ? name : kit::lower_case(name));
  return found != index.end() ? &all_[found->second] : nullptr;
}

/// `name` is how the source calls the object, which may have been renamed since.
template <class T>
void IncomingObjects<T>::add(const Incoming<T>& incoming, const std::string& name) {
  const std::size_t index = all_.size();
  const std::string own_name = incoming.object->name().utf8();
  all_.push_back(incoming);
  const std::string own_folded = kit::lower_case(own_name);
  exact_.emplace(own_name, index);
  folded_.emplace(own_folded, index);
  own_.emplace(
      std::make_pair(incoming.source, name == own_name ? own_folded : kit::lower_case(name)),
      index);
}

ImportSet::ImportSet(veldra::Unit unit, OnConflict policy, const std::vector<std::string>& tags)
    : unit_(unit), policy_(policy), tags_(tags) {}

/// What comes from the simulation formats is tagged with its file, unless other tags are given.
template <class T>
void ImportSet::give_tags(T& object, bool from_simulation, const SourceReport& report) {
  for (const auto& tag : tags_) object.addTag(shared_.tag(library_text(tag)));
  if (!from_simulation || !tags_.empty()) return;
  const std::string base = std::filesystem::path(report.file).filename().string();
  object.addTag(shared_.tag(library_text(is_utf8(base) ? base : from_latin1(base))));
}

template <class T>
void ImportSet::enter(IncomingObjects<T>& objects, const std::shared_ptr<T>& object,
                      bool from_simulation, unsigned line, std::size_t source,
                      SourceReport& report) {
  using Names = NamesOf<T>;
  const std::string name = object->name().utf8();
  for (const auto& sentence : wrong_numbers(*object)) {
    report.problems.push_back(fmt::format("{}: {} {}: {}", place(report.file, line),
                                          kind_of(*object), in_quotes(name), sentence));
  }
  give_tags(*object, from_simulation, report);
  const Incoming<T> incoming{object, source, from_simulation && tags_.empty()};
  const auto* first = objects.taken(name, from_simulation ? Names::Folded : Names::Exact);
  if (!first) {
    require_free_code(*object, line, report);
    return objects.add(incoming, name);
  }
  if (same_objects(*first, incoming)) {
    ++outcomes_of(*object, report)[Outcome::Equal];
    return;
  }
  settle(*first, object, objects, incoming, line, report);
}

/// Two objects of one name that differ: within a source that is an error of the second, between
/// sources it is a conflict like one with the library.
template <class T>
void ImportSet::settle(const Incoming<T>& first, const std::shared_ptr<T>& second,
                       IncomingObjects<T>& objects, const Incoming<T>& incoming, unsigned line,
                       SourceReport& report) {
  const std::string name = second->name().utf8();
  const auto sentence = [&](const char* where) {
    return fmt::format("{}: another {} {} stands {} already", place(report.file, line),
                       kind_of(*second), in_quotes(name), where);
  };
  if (first.source == incoming.source) return report.problems.push_back(sentence("in this file"));
  switch (policy_) {
    case OnConflict::Fail:
      throw Failure(sentence("in another source"));
    case OnConflict::Use:
      ++outcomes_of(*second, report)[Outcome::Kept];
      return;
    case OnConflict::Overwrite:
      release_code(*first.object);
      *first.object = *second;
      require_free_code(*first.object, line, report);
      ++outcomes_of(*second, report)[Outcome::Changed];
      return;
    case OnConflict::Rename: {
      require_free_code(*second, line, report);
      second->name(library_text(free_name(objects, name)));
      Incoming<T> renamed = incoming;
      renamed.renamed = true;
      return objects.add(renamed, name);
    }
  }
}

void ImportSet::require_free_code(const veldra::Material& material, unsigned line,
                                  const SourceReport& report) {
  if (!material.has_code()) return;
  const auto [holder, is_free] = names_by_code_.emplace(material.code(), material.name());
  if (is_free) return;
  throw Failure(fmt::format("{}: material {} has the code {}, which {} of the sources has already",
                            place(report.file, line), in_quotes(material.name().utf8()),
                            in_quotes(material.code().utf8()), in_quotes(holder->second.utf8())));
}

void ImportSet::add_material(const SourceMaterial& material, std::size_t source,
                             SourceReport& report) {
  ++report.read[material.described->name];
  std::shared_ptr<veldra::Material> object;
  try {
    object = map_material(material, unit_, shared_);
  } catch (const Failure& failure) {
    report.problems.push_back(fmt::format("{}: {} {}: {}", place(report.file, material.line),
                                          material.described->name, in_quotes(material.name),
                                          failure.what()));
    return;
  }
  count_dropped(material, report);
  enter(materials_, object, true, material.line, source, report);
}

void ImportSet::add(SourceModel model, SourceReport& report) {
  const std::size_t source = sources_++;
  for (const auto& material : model.materials) add_material(material, source, report);
  for (const auto& [name, count] : model.skipped) report.skipped[name] += count;
  constructions_.push_back({std::move(model.constructions), &report, source});
}

void ImportSet::add(Catalogue catalogue, SourceReport& report) {
  const std::size_t source = sources_++;
  for (const auto& material : catalogue.materials) {
    ++report.read["material"];
    enter(materials_, material.object, false, material.line, source, report);
  }
  if (catalogue.assets > 0) report.dropped["assets"] = catalogue.assets;
  if (catalogue.types) {
    if (!types_) types_.emplace();
    types_->insert(catalogue.types->begin(), catalogue.types->end());
  }
  if (locale_.empty()) locale_ = catalogue.locale;
  if (region_.empty()) region_ = catalogue.region;
  catalogue_compositions_.push_back({std::move(catalogue.compositions), &report, source});
}

void ImportSet::resolve() {
  for (const auto& [objects, report, source] : constructions_) {
    for (const auto& construction : objects) resolve(construction, source, *report);
  }
  for (const auto& [objects, report, source] : catalogue_compositions_) {
    for (const auto& composition : objects) resolve(composition, source, *report);
  }
}

void ImportSet::count_layer(const std::shared_ptr<veldra::Material>& material, double thickness,
                            SourceReport& report) {
  ++report.layers;
  if (!material) ++report.references_not_found;
  if (thickness == 0 || std::isnan(thickness)) ++report.layers_without_thickness;
}

void ImportSet::resolve(const SourceConstruction& construction, std::size_t source,
                        SourceReport& report) {
  const std::string& class_name = construction.described->name;
  ++report.read[class_name];
  const auto problem = [&](const std::string& sentence) {
    report.problems.push_back(fmt::format("{}: {} {}: {}", place(report.file, construction.line),
                                          class_name, in_quotes(construction.name), sentence));
  };
  if (construction.layers.empty()) {
    ++report.skipped[class_name];
    return problem("it has no layers and is not imported");
  }
  std::vector<std::shared_ptr<veldra::Material>> materials;
  bool all_found = true;
  for (const auto& name : construction.layers) {
    const auto material = materials_.find(name, source, MaterialNames::Folded);
    materials.push_back(material);
    count_layer(material, material ? usual_thickness(*material) : 0, report);
    if (material) continue;
    all_found = false;
    problem(fmt::format("there is no material {}", in_quotes(name)));
  }
  if (construction.name.empty()) return problem("the name is missing");
  if (!all_found) return;
  count_dropped(construction, report);
  enter(compositions_, map_construction(library_text(construction.name), map_layers(materials)),
        true, construction.line, source, report);
}

void ImportSet::resolve(const CatalogueComposition& composition, std::size_t source,
                        SourceReport& report) {
  ++report.read["composition"];
  std::vector<veldra::Composition::Layer> layers;
  bool all_found = true;
  for (const auto& layer : composition.layers) {
    const auto material = materials_.find(layer.material, source, MaterialNames::Exact);
    layers.emplace_back(material, layer.function, layer.thickness);
    count_layer(material, layer.thickness, report);
    if (material) continue;
    all_found = false;
    report.problems.push_back(fmt::format(
        "{}: composition {}: there is no material {}", place(report.file, composition.line),
        in_quotes(composition.object->name().utf8()), in_quotes(layer.material)));
  }
  if (!all_found) return;
  complete(composition, layers, report.file);
  enter(compositions_, composition.object, false, composition.line, source, report);
}

template class IncomingObjects<veldra::Material>;
template class IncomingObjects<veldra::Composition>;

}  // namespace veldra_tool
