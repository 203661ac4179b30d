// SPDX-License-Identifier: GPL-2.0-or-later
//
// Every field of a composition.

#include "objects/field_test.hpp"
#include "support/names.hpp"

#include <memory>
#include <vector>

namespace veldra_tests {
namespace {

const std::shared_ptr<const veldra::Layer> other_layer = veldra::Layer::create("Other");
const std::shared_ptr<Tag> other_tag = Tag::create("Other");

Field<Composition> tags_field() {
  return {"tags", [](Composition&) {},
          [](Composition& composition) { composition.addTag(other_tag); },
          [](const Composition& composition) { return composition.tags().back() == other_tag; },
          Compared::Yes};
}

Field<Composition> layers_field() {
  return {
      "layers", [](Composition&) {},
      [](Composition& composition) { composition.layer(4, toModify).thickness(7.0); },
      [](const Composition& composition) { return composition.layers().back().thickness() == 7.0; },
      Compared::Yes};
}

Field<Composition> presence_of_variable_layer_field() {
  return {"presence_of_variable_layer", [](Composition&) {},
          [](Composition& composition) { composition.clear_variable_layer(); },
          [](const Composition& composition) { return !composition.has_variable_layer(); },
          Compared::Yes};
}

Field<Composition> presence_of_max_thickness_field() {
  return {"presence_of_variable_layer_max_thickness", [](Composition&) {},
          [](Composition& composition) { composition.clear_variable_layer_max_thickness(); },
          [](const Composition& composition) {
            return !composition.has_variable_layer_max_thickness();
          },
          Compared::Yes};
}

Field<Composition> custom_values_field() {
  return {"custom_values", [](Composition&) {},
          [](Composition& composition) { composition.custom_value("Stored", "Other"); },
          [](const Composition& composition) {
            return composition.custom_values().begin()->second == String("Other");
          },
          Compared::Yes};
}

// The stored core is from 1 to 3 with the structural layer 2 of 5 layers, so that each index can
// change alone.
const std::vector<Field<Composition>> fields = {
    VELDRA_FIELD(Composition, name, String("Other")),
    VELDRA_FIELD(Composition, description, String("described")),
    tags_field(),
    VELDRA_FIELD(Composition, type, Composition::Type::Roof),
    VELDRA_FIELD(Composition, entity_layer, other_layer),
    VELDRA_FIELD(Composition, comments, String()),
    layers_field(),
    VELDRA_FIELD(Composition, first_core_layer, 2u),
    VELDRA_FIELD(Composition, last_core_layer, 2u),
    VELDRA_FIELD(Composition, structural_layer, 3u),
    VELDRA_FIELD_THAT_IS(No, Composition, variable_layer, 4294967295u),
    presence_of_variable_layer_field(),
    VELDRA_FIELD(Composition, variable_layer_min_thickness, 40.25),
    VELDRA_FIELD_THAT_IS(No, Composition, variable_layer_max_thickness, -1.0),
    presence_of_max_thickness_field(),
    custom_values_field(),
};

class CompositionFieldTest : public FieldTest<Composition> {};

VELDRA_FIELD_TESTS(CompositionFieldTest, Composition, fields);
VELDRA_COPIED_FIELD_TESTS(CompositionFieldTest)

}  // namespace
}  // namespace veldra_tests
