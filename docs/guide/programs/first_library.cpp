// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>

int main() {
  auto library = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "office");

  auto brick = veldra::Material::create("Brick");
  brick->type(library->get<veldra::MaterialType>("Masonry"));
  brick->thicknesses(veldra::toModify) = {115.0, 175.0, 240.0};

  auto plaster = veldra::Material::create("Lime plaster");
  plaster->description("Lime plaster for rooms, felted");

  auto wall = veldra::Composition::create("Outer wall");
  wall->type(veldra::Composition::Type::Wall);
  wall->appendLayer({brick, veldra::Material::Function::Structure, 240.0});
  wall->appendLayer({plaster, veldra::Material::Function::None, 15.0});
  wall->save(library);  // saves the two materials as well

  std::cout << library->guid().utf8() << '\n'
            << library->count<veldra::Material>() << " materials, "
            << library->count<veldra::MaterialType>() << " material types\n";
  for (const auto& layer : wall->layers()) {
    const auto& material = *layer.material();
    std::cout << layer.thickness() << " mm " << material.name().utf8() << " (material "
              << material.id() << ", " << material.type()->name().utf8() << ")\n";
  }
}
