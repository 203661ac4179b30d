// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>

#if VELDRA_VERSION < 10100
#error "this program needs veldra 1.1"
#endif

int main() {
  // The shared library may be newer than the headers, and must not be older.
  const auto running = veldra::version();
  const bool new_enough = running.major == VELDRA_VERSION_MAJOR && running.minor >= 1;
  std::cout << (new_enough ? "1.1 or later\n" : "too old\n");

  auto library = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");
  auto brick = veldra::Material::create("Brick");
  auto wall = veldra::Composition::create("Wall");
  wall->appendLayer({brick, veldra::Material::Function::Structure, 240.0});
  wall->save(library);

  // 1.0: read every composition and look into its layers.
  const auto users = library->referrers({veldra::ObjectType::Material, brick->id()});
  // 1.0: read all objects to know their ids.
  const auto ids = library->ids<veldra::Material>();
  // 1.0: multiply by 25.4 in the host.
  const double inches = veldra::converted_length(240, library->unit(), veldra::Unit::Inches);
  std::cout << users.size() << " user, " << ids.size() << " material, " << inches << " in\n";

  // 1.0: copy the file while nobody writes to it.
  library->backup("backup.lib");
  std::cout << "the file has the version " << library->version() << '\n';
}
