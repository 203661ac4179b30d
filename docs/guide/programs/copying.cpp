// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>

void fill(const std::shared_ptr<veldra::Library>& supplier) {
  auto board = veldra::Material::create("Gypsum board");
  board->thicknesses(veldra::toModify) = {0.5, 0.625};
  auto lining = veldra::Composition::create("Lining");
  lining->appendLayer({board, veldra::Material::Function::None, 0.5});
  lining->appendLayer({board, veldra::Material::Function::None, 0.5});
  lining->save(supplier);
}

int main() {
  auto supplier = veldra::Library::create("supplier.lib", veldra::Unit::Inches, "");
  fill(supplier);
  auto office = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");

  const auto lining = supplier->get<veldra::Composition>("Lining");
  veldra::IdMapping mapping(office.get());
  office->copy<veldra::Composition>(supplier, {lining->id()}, mapping);

  const auto copy = office->get<veldra::Composition>("Lining");
  for (const auto& layer : copy->layers()) {
    std::cout << layer.thickness() << " mm " << layer.material()->name().utf8() << '\n';
  }

  const veldra::ObjectKey board(veldra::ObjectType::Material, lining->layer(0).material()->id());
  veldra::IdMapping::Value value;
  if (mapping.compute({board, supplier.get()}, value)) {
    std::cout << "material " << board.id << " of the supplier is material " << value.id
              << " of the office\n";
  }

  // With the same mapping nothing is copied twice.
  office->copyAll(supplier, mapping);
  std::cout << office->count<veldra::Material>() << " material\n";
  std::cout << veldra::converted_length(10.0, veldra::Unit::Inches, office->unit()) << " mm\n";
}
