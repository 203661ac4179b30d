// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_MODEL_STORE_HPP
#define VELDRA_TESTS_STORE_MODEL_STORE_HPP

#include <veldra/veldra.hpp>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace veldra_tests {

// A library as plain maps of values by name. What an object refers to stands in it by name. It
// knows nothing of ids, rows and transactions: an operation that fails works on a copy.

using Values = std::map<std::string, std::string>;

struct MaterialValues {
  std::string description;
  std::optional<std::string> code;
  std::vector<std::string> tags;
  std::string type;  // empty: none yet
  std::optional<std::string> cut_layer;
  std::set<double> thicknesses;
  Values custom_values;
};

struct LayerValues {
  std::string material;
  double thickness = 1.0;
};

struct CompositionValues {
  std::string description;
  std::vector<std::string> tags;
  std::optional<std::string> entity_layer;
  std::vector<LayerValues> layers;
  double min_thickness = 0.0;
  std::optional<double> max_thickness;
  Values custom_values;
};

using PropertyName = std::pair<veldra::ObjectType, std::string>;

struct ModelStore {
  veldra::Unit unit;
  std::set<std::string> tags;
  std::set<std::string> types;
  std::set<std::string> layers;
  std::set<PropertyName> properties;
  std::map<std::string, MaterialValues> materials;
  std::map<std::string, CompositionValues> compositions;
};

/// The model of a new library.
ModelStore new_store(veldra::Unit unit);

/// What a library holds, read from it.
ModelStore stored_in(const veldra::Library& library);

/// All of a store as text, an object a line, to compare and to read.
std::string text_of(const ModelStore& store);

/// An object as it is about to be saved: new, or a stored one of that name.
template <class ObjectValues>
struct Draft {
  std::optional<std::string> stored_name;
  std::string name;
  ObjectValues values;
};

using MaterialDraft = Draft<MaterialValues>;

/// Stands for the new material among the layers of a draft.
extern const char* const kNewMaterial;

struct CompositionDraft : Draft<CompositionValues> {
  std::optional<MaterialDraft> new_material;
};

/// How an operation failed.
struct ModelFailure {
  std::string type;
  std::string text;
};

/// The object of a store: its kind and its name. The names of properties say for which kind of
/// object they are as well.
struct ModelKey {
  veldra::ObjectType kind;
  std::string name;
  veldra::ObjectType object_type = {};

  bool operator<(const ModelKey& other) const;
};

/// One call of a library on a store, which is left as the call leaves it also when it throws
/// `ModelFailure`.
class ModelOperation {
 public:
  /// `decision` is the answer to every taken name; 0 throws. A rename appends an apostrophe.
  ModelOperation(ModelStore& store, int decision) : store_(store), decision_(decision) {}

  void save_named(const ModelKey& key);
  void rename(const ModelKey& key, const std::string& name);
  std::string save(const MaterialDraft& draft);
  std::string save(const CompositionDraft& draft);

  /// Copies objects of the other store, those that were copied before only once. The result is
  /// the name here.
  std::string copy(const ModelStore& source, const ModelKey& key);

  /// The name here of a material or composition that was copied.
  const std::map<ModelKey, std::string>& copied() const { return copied_; }

  /// Removes an object, or throws when it is referred to or not there.
  void remove(const ModelKey& key);

  /// The kinds that the call has changed.
  const std::set<veldra::ObjectType>& changed() const { return changed_; }

 private:
  template <class Names, class Name>
  void insert_into(Names& names, const Name& name, veldra::ObjectType kind);
  void save_tags(const std::vector<std::string>& tags);
  void save_properties(const Values& values, veldra::ObjectType object_type);
  std::string write(MaterialDraft draft);
  std::string write(CompositionDraft draft);
  template <class Objects, class AnyDraft>
  bool finds_place(Objects& objects, AnyDraft& draft);
  void require_free_code(const MaterialDraft& draft) const;
  bool is_referenced(const ModelKey& key) const;
  bool erase(const ModelKey& key);

  ModelStore& store_;
  int decision_;
  std::set<veldra::ObjectType> changed_;
  std::map<ModelKey, std::string> copied_;
};

}  // namespace veldra_tests

#endif
