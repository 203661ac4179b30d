// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_SOURCE_MODEL_HPP
#define VELDRA_KIT_EXCHANGE_SOURCE_MODEL_HPP

#include <veldra/kit/exchange.hpp>

#include <deque>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace veldra::kit {

/// How a field of a class of the simulation formats comes into a library.
enum class FieldKind {
  Dropped,  ///< a library has no place for it
  Implied,  ///< other fields say it as well
  Thickness,
  Number,
  Resistance,  ///< a number, unless thickness and conductivity say it as well
  Text
};

struct SourceField {
  const char* key;       ///< the name of the field in epJSON
  const char* property;  ///< the custom property that takes the value
  FieldKind kind;
  std::vector<const char*> words = {};  ///< those that a text may be; none where it may be any
};

/// Whether a text is one that a field can have. Words compare without regard to case.
bool can_have(const SourceField& field, const std::string& text);

/// A class of materials of the simulation formats.
struct MaterialClass {
  const char* name;                 ///< in its usual spelling
  const char* type;                 ///< the material type in the library
  double default_thickness;         ///< in metres, where the class has one; else negative
  std::vector<SourceField> fields;  ///< behind the name, in the order of IDF
  std::set<std::string> required;   ///< the keys of those that the format demands
};

using MaterialClasses = std::vector<MaterialClass>;

/// The classes of materials of IDF and epJSON.
const MaterialClasses& material_classes();

/// The class of that name in whatever case; null when there is none.
const MaterialClass* material_class(const std::string& name);

/// The key of a class that a text is; null for none.
const char* key_in(const MaterialClass& described, std::string_view text);

/// Whether the name is that of a class of materials or constructions.
bool is_known_class(const std::string& name);

/// Whether a class could have that name: words of letters and digits with colons between them.
bool can_be_class(const std::string& name);

/// Whether a material type is that of a class whose materials have no thickness.
bool may_lack_thickness(const std::string& type);

enum class ConstructionKind { Layers, InternalSource, WithoutLayers };

struct ConstructionClass {
  const char* name;
  ConstructionKind kind;
};

const ConstructionClass* construction_class(const std::string& name);

/// Fields that a library has no place for, and their values.
using FieldsNotKept = std::vector<std::pair<std::string, std::string>>;

/// The values of a material by the keys of their fields: few, so that they are looked through. A
/// file may have many materials, so that they take little room.
class FieldValues {
 public:
  using Items = std::vector<std::pair<const char*, std::string>>;

  Items::const_iterator begin() const { return items_.begin(); }
  Items::const_iterator end() const { return items_.end(); }
  Items::const_iterator find(std::string_view key) const;
  std::size_t count(std::string_view key) const { return find(key) != end() ? 1 : 0; }

  /// The value of a key, which is that of a class and lives as long as the program; an empty one
  /// that is added where there is none.
  std::string& operator[](const char* key);

  void erase(std::string_view key);

  /// Whether both have the same values, in whatever order.
  bool operator==(const FieldValues& other) const;

 private:
  Items items_;
};

/// An object as a source has it, whatever its format.
struct SourceMaterial {
  const MaterialClass* described = nullptr;
  std::string name;
  std::string identifier;   ///< where the format has one beside the name
  std::string description;  ///< likewise
  unsigned line = 0;
  FieldValues values;  ///< none is empty
  FieldsNotKept not_kept;
  std::string fault;  ///< why it cannot be taken; empty for most
};

/// Leaves out the texts of fields that can be certain words only, and have others.
void leave_unknown_words_out(SourceMaterial& material);

/// Whether a material says something for a field, be it that a library has no place for it.
bool has_field(const SourceMaterial& material, const std::string& key);

struct SourceConstruction {
  const ConstructionClass* described = nullptr;
  std::string name;
  std::string identifier;   ///< likewise
  std::string description;  ///< likewise
  unsigned line = 0;
  std::vector<std::string> layers;  ///< from outside to inside
  Composition::Type type = Composition::Type::Other;
  std::vector<std::pair<std::string, std::string>> properties;  ///< custom ones, and their values
  std::string transmittance;         ///< in W/(m2 K), where the format states it
  std::vector<std::string> missing;  ///< sentences about what it refers to and is not there
  std::string fault;                 ///< why it cannot be taken; empty for most
  FieldsNotKept not_kept;
};

/// Adds the layer at a place, counted from 1 from outside. What lacks one before it is no build-up:
/// nobody knows what is between.
void add_layer(SourceConstruction& construction, std::size_t place, const std::string& material);

/// What a file of the simulation formats holds.
struct SourceModel {
  std::deque<SourceMaterial> materials;  ///< of which there may be many
  std::vector<SourceConstruction> constructions;
  std::map<std::string, unsigned> skipped;  ///< objects of other classes, by class
  bool ignores_case = true;                 ///< how names of the format compare
  std::vector<SourceProblem> problems;      ///< what is doubtful about objects that are read
  std::string note;                         ///< what the report says beside the format
  bool tells_missing = false;  ///< the reader has told which fields that the format demands are not
                               ///< there
};

}  // namespace veldra::kit

#endif
