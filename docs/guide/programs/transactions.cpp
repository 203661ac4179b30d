// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>

// Replaces what nobody uses by the catalogue of a supplier: all of it, or nothing.
void renew(const std::shared_ptr<veldra::Library>& office,
           const std::shared_ptr<veldra::Library>& supplier) {
  veldra::Library::Transaction transaction(*office);
  office->purge<veldra::Material>();
  std::cout << "  materials after the purge: " << office->count<veldra::Material>() << '\n';
  office->copyAll(supplier);
  office->region("Ostschweiz");
  transaction.commit();
}

void print(const veldra::Library& library) {
  std::cout << "  materials: " << library.count<veldra::Material>() << ", region: '"
            << library.region().utf8() << "'\n";
}

int main() {
  auto office = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");
  veldra::Material::create("Old brick")->save(office);
  auto floor = veldra::Composition::create("Floor");
  floor->save(office);
  auto supplier = veldra::Library::create("supplier.lib", veldra::Unit::Millimetres, "");
  veldra::Material::create("New brick")->save(supplier);
  veldra::Material::create("New clinker")->save(supplier);
  auto other_floor = veldra::Composition::create("Floor");
  other_floor->save(supplier);

  std::cout << "The name of the floor is taken:\n";
  try {
    renew(office, supplier);
  } catch (const veldra::ObjectNotUnique&) {
    std::cout << "  all is as it was:\n";
  }
  print(*office);

  supplier->remove(other_floor);
  std::cout << "Without that floor:\n";
  renew(office, supplier);
  print(*office);
}
