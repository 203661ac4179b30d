// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_SOURCE_SET_HPP
#define VELDRA_KIT_EXCHANGE_SOURCE_SET_HPP

#include "kit/exchange/catalogue_reader.hpp"
#include "kit/exchange/shared_objects.hpp"
#include "kit/exchange/source_model.hpp"

#include <veldra/kit/compare.hpp>
#include <veldra/kit/exchange.hpp>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace veldra::kit {

/// An object of a source, and where it comes from.
template <class T>
struct Incoming {
  std::shared_ptr<T> object;
  SourceObject origin;
};

/// The objects of one kind of all sources, found by their names.
///
/// Names of the simulation formats compare without regard to case, those of this program's own
/// format exactly.
template <class T>
class IncomingObjects {
 public:
  enum class Names { Exact, Folded };

  /// The object of that name, of the source itself if it has one.
  std::shared_ptr<T> find(const std::string& name, std::size_t source, Names names) const;

  const Incoming<T>* taken(const std::string& name, Names names) const;
  void add(const Incoming<T>& incoming);

  /// All of them in their order, of which none can be found any more.
  std::vector<Incoming<T>> take_all();

  /// The place of one of them in that order.
  std::size_t index_of(const Incoming<T>& incoming) const {
    return static_cast<std::size_t>(&incoming - all_.data());
  }

 private:
  static bool is_own(const Incoming<T>& incoming, std::size_t source,
                     const std::string& folded_name);

  std::vector<Incoming<T>> all_;
  std::map<std::string, std::size_t> exact_;
  std::map<std::string, std::size_t> folded_;

  /// By source and folded name, where the folded name alone finds another one or none.
  std::map<std::pair<std::size_t, std::string>, std::size_t> own_;
};

/// Everything that sources hold, put together: a construction may name a material of another
/// source.
class SourceSet {
 public:
  /// The rules must outlive the set.
  explicit SourceSet(const SourceRules& rules) : rules_(rules) {}

  Unit unit() const { return rules_.unit; }

  /// Adds a source, whose report must stay where it is; its layers are looked up when all sources
  /// are there.
  void add(SourceModel model, SourceReport& report);
  void add(Catalogue catalogue, SourceReport& report);

  SharedObjects& shared() { return shared_; }
  void resolve();

  std::vector<Incoming<Material>> take_materials() { return materials_.take_all(); }
  std::vector<Incoming<Composition>> take_compositions() { return compositions_.take_all(); }

  /// The material types of the sources, where one of them lists all that there are.
  const std::optional<std::set<String>>& types() const { return types_; }
  /// Where sources contradict each other so that nobody has said what to do.
  const std::vector<SourceProblem>& clashes() const { return clashes_; }

  const String& locale() const { return locale_; }
  const String& region() const { return region_; }

 private:
  template <class T>
  using NamesOf = typename IncomingObjects<T>::Names;

  struct Constructions {
    std::vector<SourceConstruction> objects;
    SourceReport* report;
    std::size_t source;
    bool ignores_case;
  };
  struct Compositions {
    std::vector<CatalogueComposition> objects;
    std::string class_name;
    SourceReport* report;
    std::size_t source;
  };

  void choose_tags(bool from_simulation, SourceReport& report) const;
  template <class T>
  void take_unknown(const Incoming<T>& incoming, const std::string& class_name,
                    const FieldsNotKept& fields, SourceReport& report);
  template <class T>
  void enter(IncomingObjects<T>& objects, const Incoming<T>& incoming, SourceReport& report);
  template <class T>
  void settle(IncomingObjects<T>& objects, const Incoming<T>& first, const Incoming<T>& incoming,
              const std::vector<FieldChange>& changes, SourceReport& report);
  template <class T>
  std::string file_of(const Incoming<T>& incoming) const;
  void add_clash(const SourceReport& report, const SourceObject& origin,
                 const std::string& sentence);
  template <class T>
  void overwrite(T& first, const T& incoming);
  void require_free_code(const Incoming<Material>& material, const SourceReport& report);
  void require_free_code(const Incoming<Composition>&, const SourceReport&) {}
  static void count_layer(const std::shared_ptr<Material>& material, double thickness,
                          SourceReport& report);
  void release_code(const Material& material) { names_by_code_.erase(material.code()); }
  void release_code(const Composition&) {}
  void add_material(SourceMaterial& material, std::size_t source, const SourceModel& model,
                    SourceReport& report);
  void resolve(const SourceConstruction& construction, const Constructions& of);
  void resolve(const CatalogueComposition& composition, const Compositions& of);

  const SourceRules& rules_;
  SharedObjects shared_;
  IncomingObjects<Material> materials_;
  IncomingObjects<Composition> compositions_;
  std::vector<Constructions> constructions_;
  std::vector<Compositions> catalogue_compositions_;
  std::vector<std::string> files_;  ///< the names of the sources
  std::vector<SourceProblem> clashes_;
  std::optional<std::set<String>> types_;
  std::map<String, String> names_by_code_;  ///< of materials
  String locale_;
  String region_;
};

}  // namespace veldra::kit

#endif
