// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_CATALOGUE_READER_HPP
#define VELDRA_KIT_EXCHANGE_CATALOGUE_READER_HPP

#include "kit/exchange/source_model.hpp"

#include <veldra/kit/exchange.hpp>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace veldra::kit {

/// A layer whose material is known by name only.
struct NamedLayer {
  std::string material;
  Material::Function function;
  double thickness;
};

struct CatalogueMaterial {
  std::shared_ptr<Material> object;
  unsigned line;
  FieldsNotKept not_kept;
};

struct CatalogueComposition {
  std::shared_ptr<Composition> object;  ///< without layers
  unsigned line;
  std::vector<NamedLayer> layers;
  unsigned first_core_layer;
  unsigned last_core_layer;
  unsigned structural_layer;
  FieldsNotKept not_kept;
};

/// What a file of whole objects holds, as this program's own format does, lengths in the unit that
/// was asked for.
struct Catalogue {
  String locale;
  String region;
  std::vector<CatalogueMaterial> materials;
  std::vector<CatalogueComposition> compositions;
  std::optional<std::set<String>> types;          ///< all material types, where the file lists them
  std::string material_class = "material";        ///< as the report calls them
  std::string composition_class = "composition";  ///< likewise
  bool names_file_in_tags = false;                ///< as what comes from other programs does
};

/// Gives a composition its layers, with their materials, and its indices. Throws `SourceError` for
/// indices that contradict each other.
void complete(const CatalogueComposition& composition,
              const std::vector<Composition::Layer>& layers, const std::string& file);

}  // namespace veldra::kit

#endif
