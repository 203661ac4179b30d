// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>

// Saves what clashes under another name, and reports what is saved.
class Importing : public veldra::Library::Reactor {
 public:
  int resolveNameConflict(veldra::Library&, veldra::ObjectType, veldra::String& name) override {
    std::cout << "  taken: " << name.utf8() << '\n';
    name = veldra::String((name.utf8() + " (new)").c_str());
    return Rename;
  }

  void objectSaved(veldra::Library&, const veldra::ObjectKey& key) override {
    if (key.type == veldra::ObjectType::Material) std::cout << "  saved: " << key.id << '\n';
  }

  void libraryChanged(veldra::Library&) override { std::cout << "  done\n"; }
};

int main() {
  auto library = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");
  veldra::Material::create("Brick")->save(library);

  auto other = veldra::Material::create("Brick");
  try {
    other->save(library);
  } catch (const veldra::ObjectNotUnique&) {
    std::cout << "without a reactor: the name is taken, and nothing has changed\n";
  }

  Importing importing;
  library->setReactor(&importing);
  std::cout << "with a reactor:\n";
  other->save(library);
  library->setReactor(nullptr);  // before it is destroyed
  std::cout << "now called " << other->name().utf8() << '\n';

  other->code("M-01");
  other->save();
  auto third = veldra::Material::create("Clinker");
  third->code("M-01");
  try {
    third->save(library);
  } catch (const veldra::ObjectNotUnique& error) {
    std::cout << "taken by another material: " << error.text().utf8() << '\n';
  }
}
