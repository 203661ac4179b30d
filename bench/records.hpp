// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_RECORDS_HPP
#define VELDRA_BENCH_RECORDS_HPP

#include "digest.hpp"

#include <string>
#include <vector>

// What a program has in memory that uses another library than this one: structs with texts in
// UTF-8, which refer to one another by ids.

namespace veldra_bench {

struct NamedRecord {
  unsigned id = 0;
  std::string name;
};

struct PropertyRecord {
  unsigned id = 0;
  std::string name;
  int object_type = 0;
};

struct ColorRecord {
  double red = 0, green = 0, blue = 0, alpha = 0;
};

struct PatternRecord {
  int type = 0;
  std::string name;
  double scale = 0, angle = 0;
  bool cross = false;
  ColorRecord color;
};

struct ValueRecord {
  unsigned property = 0;
  std::string value;
};

struct MaterialRecord {
  unsigned id = 0;
  std::string name, description;
  unsigned type = 0;
  std::string comments, code, cost, keynote, label, manufacturer, mark, model, url, classification;
  bool shading_use_appearance = false;
  ColorRecord shading_color;
  PatternRecord surface_pattern;
  double alignment_x = 0, alignment_y = 0;
  PatternRecord cut_pattern;
  unsigned cut_layer = 0;
  std::string appearance;
  int function = 0;
  bool allow_custom_thickness = false;
  std::vector<unsigned> tags;
  std::vector<double> thicknesses;
  std::vector<ValueRecord> values;
};

struct LayerRecord {
  unsigned material = 0;
  int function = 0;
  double thickness = 0;
};

struct CompositionRecord {
  unsigned id = 0;
  std::string name, description;
  int type = 0;
  unsigned entity_layer = 0;
  std::string comments;
  unsigned first_core_layer = 0, last_core_layer = 0, structural_layer = 0;
  bool has_variable_layer = false;
  unsigned variable_layer = 0;
  double variable_layer_min_thickness = 0;
  bool has_variable_layer_max_thickness = false;
  double variable_layer_max_thickness = 0;
  std::vector<unsigned> tags;
  std::vector<LayerRecord> layers;
  std::vector<ValueRecord> values;
};

struct Document {
  std::vector<NamedRecord> tags, types, layers;
  std::vector<PropertyRecord> properties;
  std::vector<MaterialRecord> materials;
  std::vector<CompositionRecord> compositions;
};

/// All that is in a library file, in the order of its lists. It must have no assets.
Document document_of(const std::string& path);

/// The digest of lists of the same objects.
void add_materials(Digest& digest, const Document& document);
void add_compositions(Digest& digest, const Document& document);
/// That of one of the materials.
void add_material(Digest& digest, const Document& document, const MaterialRecord& material);

}  // namespace veldra_bench

#endif
