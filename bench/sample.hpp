// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_SAMPLE_HPP
#define VELDRA_BENCH_SAMPLE_HPP

#include "plain_sqlite.h"

#include <veldra/veldra.hpp>

#include <memory>
#include <string>
#include <vector>

// The data that all works are done on, always the same for the same size: materials with 3 tags of
// 50, 2 thicknesses, 3 custom values of 20 properties, a drawing layer of 30 and one of the 13
// types; a fifth as many compositions of 6 layers with 2 tags and 2 custom values. Samples for some
// works differ by their shape.

namespace veldra_bench {

/// Objects of a sample are numbered from 1; their ids are these numbers until they are mapped.
enum : unsigned {
  sample_tags = 50,
  sample_layers = 30,
  sample_types = 13,
  sample_material_properties = 20,
  sample_composition_properties = 10,
  sample_composition_layers = 6,
  sample_assets = 40  ///< of each of the two kinds
};

/// How a sample differs from the usual one.
struct Shape {
  unsigned materials = 0;
  unsigned compositions = 0;
  bool assets = false;          ///< each material has a structural and a thermal asset
  bool a_third_unused = false;  ///< no composition has a layer of a third of the materials
};

std::string sample_tag_name(unsigned number);
std::string sample_material_name(unsigned number);

/// The caller frees them.
plain_material sample_material(unsigned number);
plain_material* new_sample_material(unsigned number);  ///< and its place in memory too
plain_composition sample_composition(unsigned number, const Shape& shape);

/// What the materials of a sample refer to, as objects of the library.
struct References {
  std::vector<std::shared_ptr<veldra::Tag>> tags;
  std::vector<std::shared_ptr<veldra::MaterialType>> types;
  std::vector<std::shared_ptr<veldra::Layer>> layers;
  std::vector<std::shared_ptr<veldra::CustomProperty>> properties;
};

/// New tags, layers and properties, and the types of the library.
References new_references(const veldra::Library& library);
/// Those that are in the library.
References stored_references(const veldra::Library& library);

/// A new material with the values of a sample's.
std::shared_ptr<veldra::Material> make_material(const plain_material& values,
                                                const References& references);

/// A library file in inches.
class Sample {
 public:
  /// Makes the file; it must not exist.
  Sample(const std::string& path, const Shape& shape);
  Sample(const Sample&) = delete;
  Sample& operator=(const Sample&) = delete;
  ~Sample() { plain_free_maps(&maps_); }

  const std::string& path() const { return path_; }
  unsigned materials() const { return shape_.materials; }
  unsigned compositions() const { return shape_.compositions; }

  /// Which rows of the file the numbers mean. The caller frees them.
  plain_maps maps() const;

 private:
  void fill(plain_library* library);

  std::string path_;
  Shape shape_;
  plain_maps maps_{};
};

/// The maps of a new library, which has the types already. The caller frees them.
plain_maps maps_of_new_library();

}  // namespace veldra_bench

#endif
