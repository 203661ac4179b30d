// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_CATALOGUE_READER_HPP
#define VELDRA_TOOL_IMPORT_CATALOGUE_READER_HPP

#include "import/json_tree.hpp"
#include "import/shared_objects.hpp"

#include <veldra/veldra.hpp>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace veldra_tool {

/// A layer whose material is known by name only.
struct NamedLayer {
  std::string material;
  veldra::Material::Function function;
  double thickness;
};

struct CatalogueMaterial {
  std::shared_ptr<veldra::Material> object;
  unsigned line;
};

struct CatalogueComposition {
  std::shared_ptr<veldra::Composition> object;  ///< without layers
  unsigned line;
  std::vector<NamedLayer> layers;
  unsigned first_core_layer;
  unsigned last_core_layer;
  unsigned structural_layer;
};

/// What a file of this program's own format holds, lengths in the unit that was asked for.
struct Catalogue {
  veldra::String locale;
  veldra::String region;
  std::vector<CatalogueMaterial> materials;
  std::vector<CatalogueComposition> compositions;
  std::optional<std::set<veldra::String>> types;  ///< all material types, where the file lists them
  unsigned assets = 0;                            ///< which are never imported
};

bool is_catalogue(const JsonNode& document);

/// Whether a document of that format says anything beyond its format.
bool has_catalogue_objects(const JsonNode& document);

/// The unit of the lengths in the file; empty where it says none.
std::optional<veldra::Unit> catalogue_unit(const JsonNode& document, const std::string& file);

/// Reads a document of this program's own format. Throws `Failure`.
Catalogue read_catalogue(const JsonNode& document, const std::string& file, veldra::Unit unit,
                         SharedObjects& shared);

/// Gives a composition its layers, with their materials, and its indices. Throws `Failure` for
/// indices that contradict each other.
void complete(const CatalogueComposition& composition,
              const std::vector<veldra::Composition::Layer>& layers, const std::string& file);

}  // namespace veldra_tool

#endif
