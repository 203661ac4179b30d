// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_IMPORT_SET_HPP
#define VELDRA_TOOL_IMPORT_IMPORT_SET_HPP

#include "conflicts.hpp"
#include "import/catalogue_reader.hpp"
#include "import/report.hpp"
#include "import/shared_objects.hpp"
#include "import/source_model.hpp"

#include <veldra/veldra.hpp>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veldra_tool {

/// An object that is to be imported, and the source that it comes from.
template <class T>
struct Incoming {
  std::shared_ptr<T> object;
  std::size_t source;
  bool tagged_by_origin;  ///< its tags are those that the import gives
  bool renamed = false;   ///< because another source has an object of its name
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
  void add(const Incoming<T>& incoming, const std::string& name);
  const std::vector<Incoming<T>>& all() const { return all_; }

 private:
  std::vector<Incoming<T>> all_;
  std::map<std::string, std::size_t> exact_;
  std::map<std::string, std::size_t> folded_;
  std::map<std::pair<std::size_t, std::string>, std::size_t> own_;  ///< by source, folded
};

/// Everything that the sources of one import hold, put together: a construction may name a
/// material of another source.
class ImportSet {
 public:
  ImportSet(veldra::Unit unit, OnConflict policy, const std::vector<std::string>& tags);

  /// Adds a source; its layers are looked up when all sources are there.
  void add(SourceModel model, SourceReport& report);
  void add(Catalogue catalogue, SourceReport& report);

  SharedObjects& shared() { return shared_; }
  const SharedObjects& shared() const { return shared_; }
  void resolve();

  const IncomingObjects<veldra::Material>& materials() const { return materials_; }
  const IncomingObjects<veldra::Composition>& compositions() const { return compositions_; }

  /// The material types of the sources, where one of them lists all that there are.
  const std::optional<std::set<veldra::String>>& types() const { return types_; }
  const veldra::String& locale() const { return locale_; }
  const veldra::String& region() const { return region_; }

 private:
  template <class T>
  using NamesOf = typename IncomingObjects<T>::Names;

  struct Constructions {
    std::vector<SourceConstruction> objects;
    SourceReport* report;
    std::size_t source;
  };
  struct Compositions {
    std::vector<CatalogueComposition> objects;
    SourceReport* report;
    std::size_t source;
  };

  template <class T>
  void give_tags(T& object, bool from_simulation, const SourceReport& report);
  template <class T>
  void enter(IncomingObjects<T>& objects, const std::shared_ptr<T>& object, bool from_simulation,
             unsigned line, std::size_t source, SourceReport& report);
  template <class T>
  void settle(const Incoming<T>& first, const std::shared_ptr<T>& second,
              IncomingObjects<T>& objects, const Incoming<T>& incoming, unsigned line,
              SourceReport& report);
  void require_free_code(const veldra::Material& material, unsigned line,
                         const SourceReport& report);
  void require_free_code(const veldra::Composition&, unsigned, const SourceReport&) {}
  static void count_layer(const std::shared_ptr<veldra::Material>& material, double thickness,
                          SourceReport& report);
  void release_code(const veldra::Material& material) { names_by_code_.erase(material.code()); }
  void release_code(const veldra::Composition&) {}
  void add_material(const SourceMaterial& material, std::size_t source, SourceReport& report);
  void resolve(const SourceConstruction& construction, std::size_t source, SourceReport& report);
  void resolve(const CatalogueComposition& composition, std::size_t source, SourceReport& report);

  veldra::Unit unit_;
  OnConflict policy_;
  std::vector<std::string> tags_;
  SharedObjects shared_;
  IncomingObjects<veldra::Material> materials_;
  IncomingObjects<veldra::Composition> compositions_;
  std::vector<Constructions> constructions_;
  std::vector<Compositions> catalogue_compositions_;
  std::size_t sources_ = 0;
  std::optional<std::set<veldra::String>> types_;
  std::map<veldra::String, veldra::String> names_by_code_;  ///< of materials
  veldra::String locale_;
  veldra::String region_;
};

}  // namespace veldra_tool

#endif
