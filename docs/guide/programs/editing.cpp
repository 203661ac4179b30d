// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>

void print(const char* moment, const veldra::Material& material) {
  std::cout << moment << ": id " << material.id()
            << (material.isDirty() ? ", dirty\n" : ", clean\n");
}

int main() {
  auto library = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");

  auto oak = veldra::Material::create("Oak");
  print("created", *oak);
  oak->save(library);
  print("saved", *oak);

  oak->name("Oak");
  print("the same name again", *oak);
  oak->label("Oak, oiled");
  oak->thicknesses(veldra::toModify).insert(22.0);
  print("changed", *oak);

  const auto stored = library->get<veldra::Material>(oak->id());
  std::cout << "in the library: '" << stored->label().utf8() << "'\n";
  oak->save();  // into the library that it belongs to
  std::cout << "the object that was read before: '" << stored->label().utf8() << "'\n"
            << "read anew: '" << library->get<veldra::Material>("Oak")->label().utf8() << "'\n";

  auto smoked = oak->clone();
  smoked->name("Oak, smoked");
  print("cloned", *smoked);
  smoked->save(library);
  print("saved", *smoked);
}
