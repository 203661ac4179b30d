// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/source_set.hpp"

#include <utility>

namespace veldra::kit {

ModelContent::ModelContent(SourceModel model) : model_(std::move(model)) {}

bool ModelContent::has_objects() const {
  return !model_.materials.empty() || !model_.constructions.empty();
}

std::size_t ModelContent::made_together() const {
  return model_.materials.size() + model_.constructions.size();
}

void ModelContent::tell(SourceReport& report) const {
  if (!model_.note.empty()) report.format += ", " + model_.note;
  report.problems.insert(report.problems.end(), model_.problems.begin(), model_.problems.end());
}

void ModelContent::add_to(SourceSet& set, SourceReport& report) const {
  tell(report);
  set.add(model_, report);
}

void ModelContent::give_to(SourceSet& set, SourceReport& report) {
  tell(report);
  set.add(std::move(model_), report);
}

}  // namespace veldra::kit
