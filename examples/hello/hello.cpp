// SPDX-License-Identifier: GPL-2.0-or-later
//
// Creates a library with two materials and a wall, opens it again and prints what it holds.
#include <veldra/veldra.hpp>

#include <exception>
#include <iostream>
#include <memory>
#include <vector>

namespace {

void fill(const char* file) {
  auto library = veldra::Library::create(file, veldra::Unit::Millimetres, "");
  if (library->count<veldra::Composition>() != 0) return;

  auto brick = veldra::Material::create("Brick");
  brick->type(library->get<veldra::MaterialType>("Masonry"));
  brick->thicknesses(veldra::toModify) = {115.0, 175.0, 240.0};
  auto plaster = veldra::Material::create("Lime plaster");

  auto wall = veldra::Composition::create("Outer wall");
  wall->type(veldra::Composition::Type::Wall);
  wall->appendLayer({plaster, veldra::Material::Function::None, 20.0});
  wall->appendLayer({brick, veldra::Material::Function::Structure, 240.0});
  wall->save(library);  // and, in the same transaction, its materials
}

void print(const char* file) {
  auto library = veldra::Library::open(file, true);
  std::cout << "Library " << library->guid().utf8() << " holds "
            << library->count<veldra::Material>() << " materials and\n";

  std::vector<std::shared_ptr<veldra::Composition>> walls;
  library->search(walls, "%wall%");
  for (const auto& wall : walls) {
    std::cout << wall->name().utf8() << ", from the outside to the inside:\n";
    for (const auto& layer : wall->layers()) {
      std::cout << "  " << layer.thickness() << " mm " << layer.material()->name().utf8() << '\n';
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const char* file = argc > 1 ? argv[1] : "hello.lib";
  try {
    fill(file);
    print(file);
    return 0;
  } catch (const veldra::Exception& error) {
    std::cerr << veldra::String(error.what()).utf8() << '\n';
  } catch (const std::exception& error) {  // of the database, and of malformed text
    std::cerr << error.what() << '\n';
  }
  return 1;
}
