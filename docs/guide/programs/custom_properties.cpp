// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <iostream>

int main() {
  auto library = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");

  auto oak = veldra::Material::create("Oak");
  oak->custom_value("Fire class", "D-s2,d0");
  oak->custom_value("Density [kg/m3]", "700");
  oak->save(library);  // defines the two properties as well

  const auto stored = library->get<veldra::Material>("Oak");
  for (const auto& entry : stored->custom_values()) {
    std::cout << entry.first->name().utf8() << " = " << entry.second.utf8() << '\n';
  }
  const auto grade = stored->custom_value("Strength grade");
  std::cout << "Strength grade " << (grade.null() ? "is not known" : "is known") << '\n';

  // The properties that are for materials.
  veldra::CustomPropertyCriteria criteria;
  criteria.object_type = veldra::ObjectType::Material;
  std::cout << library->count<veldra::CustomProperty>(criteria) << " properties\n";

  // Renamed through a pointer of its own, not through that of a value.
  auto property = library->get<veldra::CustomProperty>("Fire class");
  property->name("Reaction to fire");
  property->save();
  std::cout << library->get<veldra::Material>("Oak")->custom_value("Reaction to fire").get().utf8()
            << '\n';

  auto for_walls =
      veldra::CustomProperty::create("Sound reduction", veldra::ObjectType::Composition);
  try {
    oak->custom_value(for_walls, "52 dB");
  } catch (const veldra::InappropriateCustomProperty&) {
    std::cout << "Sound reduction is for compositions\n";
  }
}
