// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

namespace veldra_tests {
namespace {

TEST(Kinds, are_six_with_names_in_singular_and_plural) {
  std::vector<std::string> words;
  for (const auto kind : kit::all_kinds()) {
    words.push_back(kit::singular_of(kind) + "/" + kit::plural_of(kind));
  }
  EXPECT_THAT(words, ElementsAre("material/materials", "composition/compositions", "type/types",
                                 "layer/layers", "property/properties", "tag/tags"));
}

TEST(Kinds, know_an_asset_in_singular_only) {
  EXPECT_EQ(kit::singular_of(ObjectType::Asset), "asset");
  EXPECT_THROW(kit::plural_of(ObjectType::Asset), std::invalid_argument);
  EXPECT_THROW(kit::singular_of(ObjectType{}), std::invalid_argument);
}

TEST(Kinds, lead_to_their_classes) {
  for (const auto kind : kit::all_kinds()) {
    const auto back = kit::with_class_of(
        kind, [](auto of) { return ObjectTraits<typename decltype(of)::type>::type; });
    EXPECT_EQ(back, kind);
  }
  EXPECT_THROW(kit::with_class_of(ObjectType::Asset, [](auto) {}), std::invalid_argument);
}

TEST(CompositionTypes, have_names) {
  std::vector<std::string> names;
  for (const auto type : kit::all_composition_types()) {
    names.push_back(kit::name_of(type));
    EXPECT_EQ(kit::composition_type(names.back()), type);
  }
  EXPECT_THAT(names, ElementsAre("wall", "floor", "roof", "other"));
  EXPECT_EQ(kit::name_of(static_cast<Composition::Type>(64)), "other");
}

TEST(Units, have_names) {
  EXPECT_EQ(kit::name_of(Unit::Millimetres), "mm");
  EXPECT_EQ(kit::name_of(Unit::Inches), "in");
}

TEST(CompositionType, that_is_not_there_is_told_with_those_that_are) {
  EXPECT_EQ(error_of([] { kit::composition_type("Wall"); }),
            "there is no type of composition 'Wall'; there are wall, floor, roof, other");
}

}  // namespace
}  // namespace veldra_tests
