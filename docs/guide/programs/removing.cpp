// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>
#include <map>

int main() {
  auto library = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");
  auto brick = veldra::Material::create("Brick");
  auto wall = veldra::Composition::create("Garden wall");
  wall->appendLayer({brick, veldra::Material::Function::Structure, 240.0});
  wall->save(library);
  auto slate = veldra::Material::create("Slate");
  slate->save(library);

  try {
    library->remove(brick);
  } catch (const veldra::ObjectInUse&) {
    std::cout << "Brick is in use by:\n";
    for (const auto& key : library->referrers({veldra::ObjectType::Material, brick->id()})) {
      const auto user = library->get<veldra::Composition>(key.id);
      std::cout << "  " << user->name().utf8() << '\n';
    }
  }

  std::map<veldra::ObjectKey, bool> result;
  library->remove<veldra::Material>({brick->id(), slate->id()}, result);
  for (const auto& entry : result) {
    std::cout << "material " << entry.first.id << (entry.second ? " is removed\n" : " stays\n");
  }

  library->remove(wall);
  std::cout << library->unreferenced<veldra::Material>().size() << " material is not in use\n";
  library->purge<veldra::Material>();
  std::cout << library->count<veldra::Material>() << " materials are left\n";
}
