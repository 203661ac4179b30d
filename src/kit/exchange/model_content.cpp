// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/source_set.hpp"

namespace veldra::kit {

ModelContent::ModelContent(SourceModel model) : model_(std::move(model)) {}

bool ModelContent::has_objects() const {
  return !model_.materials.empty() || !model_.constructions.empty();
}

void ModelContent::add_to(SourceSet& set, SourceReport& report) const { set.add(model_, report); }

}  // namespace veldra::kit
