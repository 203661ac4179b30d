// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/source_set.hpp"

#include <veldra/kit/compare.hpp>
#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/numbers.hpp>

#include "kit/exchange/mapping.hpp"
#include "kit/exchange/problem.hpp"
#include "kit/text/list.hpp"
#include "kit/text/quoted.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace veldra::kit {

namespace {

using MaterialNames = IncomingObjects<Material>::Names;

/// An object as sentences call it: by its class or kind, and its name.
std::string called(const std::string& kind, const std::string& name) {
  return fmt::format("{} {}", kind, quoted(name));
}

template <class T>
std::string called(const T& object) {
  return called(singular_of(ObjectTraits<T>::type), object.name().utf8());
}

void add_problem(SourceReport& report, unsigned line, const std::string& object,
                 const std::string& sentence) {
  report.problems.push_back({report.file, line, object, sentence});
}

template <class T>
void add_repeated(Repetition what, const IncomingObjects<T>& objects, const Incoming<T>& first,
                  const Incoming<T>& second, SourceReport& report) {
  const auto place = static_cast<unsigned>(objects.index_of(first));
  report.repeated.push_back(
      {{ObjectTraits<T>::type, place}, second.origin.name, second.origin.line, what});
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

template <class T>
void add_tag(T& object, const std::shared_ptr<Tag>& tag) {
  const auto& has = object.tags();
  const bool is_there = std::any_of(has.begin(), has.end(),
                                    [&](const auto& each) { return each->name() == tag->name(); });
  if (!is_there) object.addTag(tag);
}

/// An object may have such a tag by itself.
template <class T>
void give_tags(T& object, const SourceReport& report, SharedObjects& shared) {
  for (const auto& tag : report.tags) add_tag(object, shared.tag(tag));
}

/// An object that stands for another one has the tags of both, each once.
template <class T>
void add_tags(T& object, const std::vector<std::shared_ptr<Tag>>& tags) {
  for (const auto& tag : tags) add_tag(object, tag);
}

/// In what an object differs from the one that came first, whose name may be written otherwise.
template <class T>
std::vector<FieldChange> differences_between(const T& first, const T& incoming) {
  const auto other = incoming.clone();
  other->name(first.name());
  return differences(first, *other);
}

std::string differences_text(ObjectType kind, const std::vector<FieldChange>& changes) {
  const auto text_of = [kind](const std::string& field, const Value& value) {
    return value.is_empty() ? std::string("nothing") : field_text(kind, field, value);
  };
  std::string text;
  for (const auto& change : changes) {
    text += fmt::format("{}{}: {} there, {} here", text.empty() ? "" : "; ", change.field,
                        text_of(change.field, change.before), text_of(change.field, change.after));
  }
  return text;
}

/// Tells of an object that it lacks what its format demands, and has come in all the same.
void tell_missing(const SourceMaterial& material, SourceReport& report) {
  std::vector<std::string> missing;
  for (const auto& key : material.described->required) {
    if (!has_field(material, key)) missing.push_back(quoted(key));
  }
  if (missing.empty()) return;
  add_problem(report, material.line, material.name,
              fmt::format("{}: {} {} missing", called(material.described->name, material.name),
                          list_of(missing), missing.size() == 1 ? "is" : "are"));
  report.problems.back().doubt = true;
}

/// No text of a library has the character 0.
bool can_be_kept(const std::string& text) { return text.find('\0') == std::string::npos; }

}  // namespace

template <class T>
std::shared_ptr<T> IncomingObjects<T>::find(const std::string& name, std::size_t source,
                                            Names names) const {
  const auto exact = exact_.find(name);
  if (names == Names::Exact && exact != exact_.end()) return all_[exact->second].object;
  const auto own = own_.find({source, lower_case(name)});
  if (own != own_.end()) return all_[own->second].object;
  const auto* other = taken(name, Names::Folded);
  return other ? other->object : nullptr;
}

template <class T>
const Incoming<T>* IncomingObjects<T>::taken(const std::string& name, Names names) const {
  const auto& index = names == Names::Exact ? exact_ : folded_;
  const auto found = index.find(names == Names::Exact ? name : lower_case(name));
  return found != index.end() ? &all_[found->second] : nullptr;
}

template <class T>
void IncomingObjects<T>::add(const Incoming<T>& incoming) {
  const std::size_t index = all_.size();
  const std::string own_name = incoming.object->name().utf8();
  const std::string& source_name = incoming.origin.name;
  all_.push_back(incoming);
  exact_.emplace(own_name, index);
  folded_.emplace(lower_case(own_name), index);
  const auto source = incoming.origin.source;
  const auto key = lower_case(source_name);
  const auto found = folded_.find(key);
  const bool is_found = found != folded_.end() && is_own(all_[found->second], source, key);
  if (!is_found) own_.emplace(std::make_pair(source, key), index);
}

template <class T>
bool IncomingObjects<T>::is_own(const Incoming<T>& incoming, std::size_t source,
                                const std::string& folded_name) {
  return incoming.origin.source == source && lower_case(incoming.origin.name) == folded_name;
}

template <class T>
std::vector<Incoming<T>> IncomingObjects<T>::take_all() {
  exact_.clear();
  folded_.clear();
  own_.clear();
  return std::move(all_);
}

/// What comes from the simulation formats is tagged with its file, unless other tags are given.
void SourceSet::choose_tags(bool from_simulation, SourceReport& report) const {
  for (const auto& tag : rules_.tags) report.tags.push_back(library_text(tag));
  if (!from_simulation || !rules_.tags.empty()) return;
  const std::string base = std::filesystem::path(report.file).filename().string();
  report.tags.push_back(library_text(in_utf8(base)));
}

/// Values for which a library has no place: where they are wanted all the same, they become custom
/// values.
template <class T>
void SourceSet::take_unknown(const Incoming<T>& incoming, const std::string& class_name,
                             const FieldsNotKept& fields, SourceReport& report) {
  const auto& origin = incoming.origin;
  for (const auto& [field, value] : fields) {
    if (!rules_.keep_unknown || !can_be_kept(field) || !can_be_kept(value)) {
      report.not_kept.push_back({class_name, field, origin.name, origin.line, value});
      continue;
    }
    keep_unknown(*incoming.object, class_name, field, value, shared_);
  }
}

template <class T>
void SourceSet::enter(IncomingObjects<T>& objects, const Incoming<T>& incoming,
                      SourceReport& report) {
  using Names = NamesOf<T>;
  T& object = *incoming.object;
  const auto& origin = incoming.origin;
  for (const auto& sentence : wrong_numbers(object)) {
    add_problem(report, origin.line, origin.name, fmt::format("{}: {}", called(object), sentence));
    report.problems.back().doubt = true;
  }
  give_tags(object, report, shared_);
  const auto* first =
      objects.taken(origin.name, origin.ignores_case ? Names::Folded : Names::Exact);
  if (!first) {
    require_free_code(incoming, report);
    return objects.add(incoming);
  }
  const auto changes = differences_between(*first->object, object);
  if (changes.empty()) {
    add_tags(*first->object, object.tags());
    return add_repeated(Repetition::Equal, objects, *first, incoming, report);
  }
  settle(objects, *first, incoming, changes, report);
}

/// Two objects of one name that differ: within a source that is an error of the second, between
/// sources it is a clash like one with a library.
template <class T>
void SourceSet::settle(IncomingObjects<T>& objects, const Incoming<T>& first,
                       const Incoming<T>& incoming, const std::vector<FieldChange>& changes,
                       SourceReport& report) {
  const auto& origin = incoming.origin;
  if (first.origin.source == origin.source) {
    return add_problem(
        report, origin.line, origin.name,
        fmt::format("another {} stands in this file already", called(*incoming.object)));
  }
  switch (rules_.on_clash) {
    case OnClash::Fail:
      return add_clash(report, origin,
                       fmt::format("another {} stands in {} already, which differs ({})",
                                   called(*incoming.object), file_of(first),
                                   differences_text(ObjectTraits<T>::type, changes)));
    case OnClash::Use:
      return add_repeated(Repetition::Used, objects, first, incoming, report);
    case OnClash::Overwrite:
      overwrite(*first.object, *incoming.object);
      require_free_code({first.object, origin}, report);
      return add_repeated(Repetition::Overwrote, objects, first, incoming, report);
    case OnClash::Rename: {
      require_free_code(incoming, report);
      incoming.object->name(library_text(free_name(objects, origin.name)));
      Incoming<T> renamed = incoming;
      renamed.origin.renamed = true;
      return objects.add(renamed);
    }
  }
}

template <class T>
std::string SourceSet::file_of(const Incoming<T>& incoming) const {
  return quoted(files_[incoming.origin.source]);
}

void SourceSet::add_clash(const SourceReport& report, const SourceObject& origin,
                          const std::string& sentence) {
  clashes_.push_back({report.file, origin.line, origin.name, sentence});
}

/// What is overwritten keeps its tags.
template <class T>
void SourceSet::overwrite(T& first, const T& incoming) {
  release_code(first);
  const auto tags = first.tags();
  first = incoming;
  add_tags(first, tags);
}

void SourceSet::require_free_code(const Incoming<Material>& incoming, const SourceReport& report) {
  const Material& material = *incoming.object;
  if (!material.has_code()) return;
  const auto [holder, is_free] = names_by_code_.emplace(material.code(), material.name());
  if (is_free) return;
  add_clash(report, incoming.origin,
            fmt::format("{} has the code {}, which {} of the sources has already", called(material),
                        quoted(material.code().utf8()), quoted(holder->second.utf8())));
}

void SourceSet::add_material(SourceMaterial& material, std::size_t source, const SourceModel& model,
                             SourceReport& report) {
  ++report.read[material.described->name];
  leave_unknown_words_out(material);
  std::shared_ptr<Material> object;
  try {
    object = map_material(material, rules_.unit, shared_);
  } catch (const Error& error) {
    return add_problem(
        report, material.line, material.name,
        fmt::format("{}: {}", called(material.described->name, material.name), error.what()));
  }
  if (!model.tells_missing) tell_missing(material, report);
  const Incoming<Material> incoming{
      object, {source, material.line, material.name, model.ignores_case, false}};
  take_unknown(incoming, material.described->name, material.not_kept, report);
  enter(materials_, incoming, report);
}

void SourceSet::add(SourceModel model, SourceReport& report) {
  const std::size_t source = files_.size();
  files_.push_back(report.file);
  choose_tags(true, report);
  for (; !model.materials.empty(); model.materials.pop_front()) {
    add_material(model.materials.front(), source, model, report);
  }
  for (const auto& [name, count] : model.skipped) report.skipped[name] += count;
  constructions_.push_back({std::move(model.constructions), &report, source, model.ignores_case});
}

void SourceSet::add(Catalogue catalogue, SourceReport& report) {
  const std::size_t source = files_.size();
  files_.push_back(report.file);
  choose_tags(catalogue.names_file_in_tags, report);
  for (const auto& material : catalogue.materials) {
    ++report.read[catalogue.material_class];
    const auto name = material.object->name().utf8();
    const Incoming<Material> incoming{material.object, {source, material.line, name, false, false}};
    take_unknown(incoming, catalogue.material_class, material.not_kept, report);
    enter(materials_, incoming, report);
  }
  if (catalogue.types) {
    if (!types_) types_.emplace();
    types_->insert(catalogue.types->begin(), catalogue.types->end());
  }
  if (locale_.empty()) locale_ = catalogue.locale;
  if (region_.empty()) region_ = catalogue.region;
  catalogue_compositions_.push_back(
      {std::move(catalogue.compositions), catalogue.composition_class, &report, source});
}

void SourceSet::resolve() {
  for (const auto& constructions : constructions_) {
    for (const auto& construction : constructions.objects) resolve(construction, constructions);
  }
  for (const auto& compositions : catalogue_compositions_) {
    for (const auto& composition : compositions.objects) resolve(composition, compositions);
  }
  constructions_.clear();
  catalogue_compositions_.clear();
}

void SourceSet::count_layer(const std::shared_ptr<Material>& material, double thickness,
                            SourceReport& report) {
  ++report.layers;
  if (!material) ++report.references_not_found;
  if (thickness == 0 || std::isnan(thickness)) ++report.layers_without_thickness;
}

void SourceSet::resolve(const SourceConstruction& construction, const Constructions& of) {
  SourceReport& report = *of.report;
  const auto names = of.ignores_case ? MaterialNames::Folded : MaterialNames::Exact;
  const std::string& class_name = construction.described->name;
  ++report.read[class_name];
  const auto problem = [&](const std::string& sentence) {
    add_problem(report, construction.line, construction.name,
                fmt::format("{}: {}", called(class_name, construction.name), sentence));
  };
  if (!construction.fault.empty()) return problem(construction.fault);
  if (construction.layers.empty() && construction.missing.empty()) {
    ++report.skipped[class_name];
    return problem("it has no layers and is not imported");
  }
  std::vector<std::shared_ptr<Material>> materials;
  bool all_found = construction.missing.empty();
  report.references_not_found += static_cast<unsigned>(construction.missing.size());
  for (const auto& sentence : construction.missing) problem(sentence);
  for (const auto& name : construction.layers) {
    const auto material = materials_.find(name, of.source, names);
    materials.push_back(material);
    count_layer(material, material ? usual_thickness(*material) : 0, report);
    if (material) continue;
    all_found = false;
    problem(fmt::format("there is no material {}", quoted(name)));
  }
  if (construction.name.empty()) return problem("the name is missing");
  if (!all_found) return;
  const auto object = map_construction(construction, map_layers(materials), shared_);
  if (!construction.transmittance.empty()) {
    keep_transmittance(*object, construction.transmittance, rules_.unit, shared_);
  }
  const Incoming<Composition> incoming{
      object, {of.source, construction.line, construction.name, of.ignores_case, false}};
  take_unknown(incoming, class_name, construction.not_kept, report);
  enter(compositions_, incoming, report);
}

void SourceSet::resolve(const CatalogueComposition& composition, const Compositions& of) {
  SourceReport& report = *of.report;
  const std::size_t source = of.source;
  ++report.read[of.class_name];
  const auto name = composition.object->name().utf8();
  std::vector<Composition::Layer> layers;
  bool all_found = true;
  for (const auto& layer : composition.layers) {
    const auto material = materials_.find(layer.material, source, MaterialNames::Exact);
    layers.emplace_back(material, layer.function, layer.thickness);
    count_layer(material, layer.thickness, report);
    if (material) continue;
    all_found = false;
    add_problem(report, composition.line, name,
                fmt::format("{}: there is no material {}", called(*composition.object),
                            quoted(layer.material)));
  }
  if (!all_found) return;
  complete(composition, layers, report.file);
  const Incoming<Composition> incoming{composition.object,
                                       {source, composition.line, name, false, false}};
  take_unknown(incoming, of.class_name, composition.not_kept, report);
  enter(compositions_, incoming, report);
}

template class IncomingObjects<Material>;
template class IncomingObjects<Composition>;

}  // namespace veldra::kit
