// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>
#include <memory>
#include <vector>

using Materials = std::vector<std::shared_ptr<veldra::Material>>;

void add(const std::shared_ptr<veldra::Library>& library, const char* name, const char* type,
         const char* tag) {
  auto material = veldra::Material::create(name);
  material->type(library->get<veldra::MaterialType>(type));
  material->addTag(veldra::Tag::create(tag));
  material->save(library);
}

void print(const char* title, const Materials& materials) {
  std::cout << title << ":";
  for (const auto& material : materials) std::cout << " " << material->name().utf8() << ";";
  std::cout << '\n';
}

int main() {
  auto library = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");
  add(library, "Oak, planed", "Wood", "interior");
  add(library, "Oak, rough sawn", "Wood", "exterior");
  add(library, "Larch", "Wood", "exterior");
  add(library, "Slate", "Stone", "exterior");

  Materials found;
  library->search(found, "oak%");
  print("Begin with oak", found);

  veldra::MaterialCriteria criteria;
  criteria.type = library->get<veldra::MaterialType>("Wood");
  criteria.tags = {"exterior"};
  found.clear();  // lists append
  library->get(found, criteria);
  print("Wood for outside", found);

  found.clear();
  library->search(found, "%sawn%", criteria);
  print("Sawn wood for outside", found);

  const auto exact = library->get<veldra::Material>("Larch");
  const auto missing = library->get<veldra::Material>("larch");
  std::cout << "Larch has the id " << exact->id() << ", larch is "
            << (missing ? "there" : "not there") << '\n';

  library->for_each<veldra::Material>([](const std::shared_ptr<veldra::Material>& material) {
    std::cout << "visited " << material->name().utf8() << '\n';
    return material->name() != veldra::String("Larch");  // false ends it
  });
}
