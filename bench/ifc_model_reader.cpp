// SPDX-License-Identifier: GPL-2.0-or-later
#include "ifc_model_reader.hpp"

#include <ifcpp/model/BuildingModel.h>
#include <ifcpp/reader/ReaderSTEP.h>

#include <memory>

namespace veldra_bench {

bool has_ifc_model_reader() { return true; }

std::size_t entities_in_ifc(std::string& text) {
  auto model = std::make_shared<BuildingModel>();
  ReaderSTEP().loadModelFromString(text, model);
  return model->getMapIfcEntities().size();
}

}  // namespace veldra_bench
