// SPDX-License-Identifier: GPL-2.0-or-later
#include "findings.hpp"

#include "failure.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "parts.hpp"
#include "progress.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <set>
#include <tuple>

namespace veldra_tool {

namespace {

struct FindingOfObject {
  veldra::String name;
  unsigned id;
  Finding finding;
};

class Examination {
 public:
  explicit Examination(const veldra::Library& library) : library_(library) {}

  std::vector<Finding> run() {
    examine_file();
    examine_library();
    for (const auto kind : all_kinds()) {
      if (unreadable_.count(kind) != 0) continue;
      with_class_of(kind, [&](auto of) { try_to_examine<typename decltype(of)::type>(); });
    }
    return std::move(findings_);
  }

 private:
  /// What the library finds by itself is not looked for again.
  void examine_file() {
    std::vector<veldra::Library::Finding> found;
    library_.check(found);
    for (const auto& finding : found) {
      add(subject_of(finding), finding.sentence.utf8());
      if (finding.object.id == 0) unreadable_.insert(finding.object.type);
    }
  }

  static std::string subject_of(const veldra::Library::Finding& finding) {
    const auto kind = finding.object.type;
    if (kind == veldra::ObjectType{}) return "file";
    if (finding.object.id == 0) return plural_of(kind);
    return subject(kind, finding.object.id, finding.name);
  }

  /// An object as it is called in findings.
  static std::string subject(veldra::ObjectType kind, unsigned id, const veldra::String& name) {
    return fmt::format("{} {}", singular_of(kind),
                       name.empty() ? fmt::format("{}", id) : in_quotes(name.utf8()));
  }

  /// A file without what it should have may not let a kind be read at all.
  template <class T>
  void try_to_examine() {
    try {
      examine_kind<T>();
    } catch (const std::exception&) {
      if (!lies_in_the_file()) throw;
      add(plural_of(veldra::ObjectTraits<T>::type), sentence_of_error());
    }
  }

  /// In parts, as a large library does not fit into memory. What is found is in the order of names.
  template <class T>
  void examine_kind() {
    failed_ = 0;
    parts_failed_ = false;
    of_objects_.clear();
    std::size_t read = 0;
    in_parts<T>(library_, [&](const std::set<unsigned>& ids) { read += examine_part<T>(ids); });
    add_missing(veldra::ObjectTraits<T>::type, library_.count<T>(), read, !parts_failed_);
    add_findings_of_objects();
  }

  template <class T>
  std::size_t examine_part(const std::set<unsigned>& ids) {
    const auto objects = readable_objects<T>(ids);
    for (const auto& object : objects) {
      examine(*object);
      progress_.step();
    }
    return objects.size();
  }

  void add_findings_of_objects() {
    std::stable_sort(of_objects_.begin(), of_objects_.end(),
                     [](const FindingOfObject& left, const FindingOfObject& right) {
                       return std::tie(left.name, left.id) < std::tie(right.name, right.id);
                     });
    for (auto& found : of_objects_) findings_.push_back(std::move(found.finding));
    of_objects_.clear();
  }

  /// Tells of objects that are in the file and were not read.
  void add_missing(veldra::ObjectType kind, unsigned long long count, std::size_t read,
                   bool all_at_once) {
    if (count <= read + failed_) return;
    const auto missing = count - read - failed_;
    const auto subject =
        fmt::format("{} {}", missing, missing == 1 ? singular_of(kind) : plural_of(kind));
    if (!all_at_once) {
      add("library", subject + " could not be looked at, because others cannot be read");
    } else if (refers_to_others(kind)) {
      add("library", subject +
                         " cannot be read, because what they refer to is not there, or "
                         "because of ids that no object can have");
    }
    // Of the other kinds the library has told which ids are none.
  }

  static bool refers_to_others(veldra::ObjectType kind) {
    return kind == veldra::ObjectType::Material || kind == veldra::ObjectType::Composition;
  }

  /// Where one cannot be read, each is read alone, to find out which.
  template <class T>
  std::vector<std::shared_ptr<T>> readable_objects(const std::set<unsigned>& ids) {
    std::vector<std::shared_ptr<T>> objects;
    try {
      library_.get(objects, ids);
    } catch (const std::exception&) {
      if (!lies_in_the_file()) throw;
      parts_failed_ = true;
      objects.clear();
      for (const unsigned id : ids) {
        if (const auto object = read<T>(id)) objects.push_back(object);
      }
    }
    return objects;
  }

  template <class T>
  std::shared_ptr<T> read(unsigned id) {
    try {
      return library_.get<T>(id);
    } catch (const std::exception&) {
      if (!lies_in_the_file()) throw;
      ++failed_;
      add(fmt::format("{} {}", singular_of(veldra::ObjectTraits<T>::type), id),
          sentence_of_error());
      return nullptr;
    }
  }

  void examine_library() {
    const auto unit = library_.unit();
    if (unit != veldra::Unit::Inches && unit != veldra::Unit::Millimetres) {
      add("library", fmt::format("the unit {} is not known", static_cast<int>(unit)));
    }
    if (library_.guid().empty()) add("library", "it has no GUID");
  }

  void examine(const veldra::Tag& tag) { examine_name(tag); }
  void examine(const veldra::Layer& layer) { examine_name(layer); }
  void examine(const veldra::MaterialType& type) { examine_name(type); }

  void examine(const veldra::CustomProperty& property) {
    examine_name(property);
    const auto owner = property.object_type();
    if (owner == veldra::ObjectType::Material || owner == veldra::ObjectType::Composition ||
        owner == veldra::ObjectType{}) {
      return;
    }
    add(property, "it is for objects that have no custom values");
  }

  void examine(const veldra::Material& material) {
    examine_name(material);
    examine_values(material, veldra::ObjectType::Material);
    add_all(material, kit::doubtful_numbers(material));
    if (!material.type()) add(material, "it has no type");
  }

  void examine(const veldra::Composition& composition) {
    examine_name(composition);
    examine_values(composition, veldra::ObjectType::Composition);
    examine_layers(composition);
    examine_core(composition);
    add_all(composition, kit::doubtful_numbers(composition));
    examine_heat(composition);
  }

  /// Where something is known of the heat, what is missing has been forgotten. What is wrong is
  /// told of the material, or with the thicknesses.
  void examine_heat(const veldra::Composition& composition) {
    const auto heat = kit::transmission_of(composition, library_.unit());
    const auto is_known = [](const kit::LayerHeat& layer) { return layer.resistance.has_value(); };
    if (std::none_of(heat.layers.begin(), heat.layers.end(), is_known)) return;
    for (std::size_t i = 0; i < heat.layers.size(); ++i) {
      const auto& layer = composition.layers()[i];
      if (heat.layers[i].fault.empty() || !(layer.thickness() > 0) || !layer.material()) continue;
      if (!kit::doubtful_numbers(*layer.material()).empty() || is_gas(*layer.material())) continue;
      add(composition,
          fmt::format("layer {}, {}: {}", i + 1, in_quotes(layer.material()->name().utf8()),
                      heat.layers[i].fault));
    }
  }

  /// Glazing is often stored without what lets its resistance be computed.
  static bool is_gas(const veldra::Material& material) {
    const kit::KnownValues values(material);
    return !values.text(kit::Known::GasType).empty() || !values.text(kit::Known::GasType1).empty();
  }

  void examine_layers(const veldra::Composition& composition) {
    if (composition.layers().empty()) add(composition, "it has no layers");
    for (std::size_t i = 0; i < composition.layers().size(); ++i) {
      if (composition.layers()[i].material()) continue;
      add(composition, fmt::format("layer {} has no material", i + 1));
    }
  }

  /// Indices are counted from 1 in messages, as everywhere for people.
  void examine_core(const veldra::Composition& composition) {
    if (composition.layers().empty()) return;
    const auto first = composition.first_core_layer();
    const auto last = composition.last_core_layer();
    const auto structural = composition.structural_layer();
    const auto core = fmt::format("from layer {} to layer {}", first + 1ULL, last + 1ULL);
    if (last >= composition.layers().size()) {
      add(composition, fmt::format("the core, {}, reaches beyond the {} layers", core,
                                   composition.layers().size()));
    }
    if (first > last) add(composition, fmt::format("the core, {}, ends before it begins", core));
    if (structural < first || structural > last) {
      add(composition,
          fmt::format("the structural layer {} is outside the core, {}", structural + 1ULL, core));
    }
  }

  template <class Owner>
  void examine_values(const Owner& owner, veldra::ObjectType kind) {
    for (const auto& value : owner.custom_values()) {
      const auto for_kind = value.first->object_type();
      if (for_kind == kind || for_kind == veldra::ObjectType{}) continue;
      add(owner, fmt::format("it has a value of the property {}, which is for other objects",
                             in_quotes(value.first->name().utf8())));
    }
  }

  template <class T>
  void examine_name(const T& object) {
    if (object.name().empty()) add(object, "it has no name");
  }

  template <class T>
  void add_all(const T& object, const std::vector<std::string>& sentences) {
    for (const auto& sentence : sentences) add(object, printable(sentence));
  }
  template <class T>
  void add(const T& object, const std::string& sentence) {
    const auto told = subject(veldra::ObjectTraits<T>::type, object.id(), object.name());
    of_objects_.push_back({object.name(), object.id(), {told, sentence}});
  }
  void add(const char* object, const std::string& sentence) { add(std::string(object), sentence); }
  void add(const std::string& object, const std::string& sentence) {
    findings_.push_back({object, sentence});
  }

  const veldra::Library& library_;
  Progress progress_{"examining"};
  std::vector<Finding> findings_;
  std::vector<FindingOfObject> of_objects_;  ///< of the kind that is looked at
  std::set<veldra::ObjectType> unreadable_;  ///< kinds that must not be read
  std::size_t failed_ = 0;                   ///< objects of the kind that gave an error
  bool parts_failed_ = false;                ///< whether some of them were read one by one
};

}  // namespace

std::vector<Finding> findings_in(const veldra::Library& library) {
  return Examination(library).run();
}

}  // namespace veldra_tool
