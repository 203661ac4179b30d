// SPDX-License-Identifier: GPL-2.0-or-later
// Sets fields, filters and sorts, and catches an error of the kit.
#include <veldra/kit/kit.hpp>
#include <veldra/veldra.hpp>

#include <iostream>

namespace {

void add(const std::shared_ptr<veldra::Library>& library, const char* name, double conductivity) {
  const veldra::kit::Fields<veldra::Material> fields(*library);
  const auto material = veldra::Material::create(name);
  fields.at("conductivity").set(*material, conductivity);
  material->save(library);
}

bool selects(const veldra::Library& library) {
  const veldra::kit::Fields<veldra::Material> fields(library);
  const veldra::kit::Filter<veldra::Material> is_insulation("conductivity < 0.1", fields);
  std::vector<std::shared_ptr<veldra::Material>> materials;
  library.get(materials);
  veldra::kit::Order<veldra::Material>("-conductivity", fields).sort(materials);
  return materials[0]->name() == veldra::String("Brick") && !is_insulation(*materials[0]) &&
         is_insulation(*materials[1]);
}

bool tells_of_errors(const veldra::Library& library) {
  try {
    veldra::kit::Fields<veldra::Material>(library).at("conductivty");
  } catch (const veldra::kit::UnknownField& error) {
    std::cout << error.what() << '\n';
    return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  const auto library =
      veldra::Library::create(argc > 1 ? argv[1] : "kit.lib", veldra::Unit::Millimetres, "");
  add(library, "Wool", 0.035);
  add(library, "Brick", 0.81);
  return selects(*library) && tells_of_errors(*library) ? 0 : 1;
}
