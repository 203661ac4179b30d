// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/field_test.hpp"
#include "objects/stored_objects.hpp"
#include "support/names.hpp"

#include <limits>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace veldra_tests {
namespace {

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

static_assert(!std::is_copy_constructible<Material>::value, "clone() makes another object");
static_assert(!std::is_move_constructible<Material>::value, "");
static_assert(!std::is_default_constructible<Material>::value, "");
static_assert(std::is_copy_assignable<Material>::value, "");
static_assert(!std::is_polymorphic<Material>::value, "");
static_assert(std::is_base_of<std::enable_shared_from_this<Material>, Material>::value, "");
static_assert(std::is_same<decltype(std::declval<const Material&>().thicknesses()),
                           const std::set<double>&>::value,
              "");
static_assert(std::is_same<decltype(std::declval<Material&>().thicknesses(toModify)),
                           std::set<double>&>::value,
              "");

void expect_defaults(const Material& material) {
  EXPECT_EQ(material.id(), 0u);
  EXPECT_EQ(material.library(), nullptr);
  for (const String* text :
       {&material.description(), &material.comments(), &material.code(), &material.cost(),
        &material.keynote(), &material.label(), &material.manufacturer(), &material.mark(),
        &material.model(), &material.url(), &material.classification(), &material.appearance()}) {
    EXPECT_TRUE(text->empty());
  }
  EXPECT_FALSE(material.has_code());
  EXPECT_THAT(material.tags(), IsEmpty());
  EXPECT_EQ(material.type(), nullptr);
  EXPECT_FALSE(material.shading_use_appearance());
  EXPECT_TRUE(material.shading_color() == Color());
  EXPECT_TRUE(material.surface_pattern() == Pattern());
  EXPECT_EQ(material.surface_pattern().scale, 1.0);
  EXPECT_EQ(int(material.surface_pattern().type), -1);
  EXPECT_TRUE(material.surface_pattern_color() == Color());
  EXPECT_TRUE(material.surface_pattern_alignment() == Point2d());
  EXPECT_TRUE(material.cut_pattern() == Pattern());
  EXPECT_EQ(material.cut_pattern().scale, 1.0);
  EXPECT_EQ(int(material.cut_pattern().type), -1);
  EXPECT_TRUE(material.cut_pattern_color() == Color());
  EXPECT_EQ(material.cut_layer(), nullptr);
  EXPECT_EQ(material.structuralAsset(), nullptr);
  EXPECT_EQ(material.thermalAsset(), nullptr);
  EXPECT_EQ(int(material.function()), 0);
  EXPECT_THAT(material.thicknesses(), IsEmpty());
  EXPECT_TRUE(material.allow_custom_thickness());
  EXPECT_THAT(material.custom_values(), IsEmpty());
}

TEST(MaterialTest, a_new_material_has_defaults_and_is_clean) {
  const auto material = Material::create();
  expect_defaults(*material);
  EXPECT_TRUE(material->name().empty());
  EXPECT_FALSE(material->isDirty());
}

TEST(MaterialTest, a_new_material_with_a_name_is_dirty) {
  const auto material = Material::create("Oak");
  expect_defaults(*material);
  EXPECT_EQ(material->name().utf8(), "Oak");
  EXPECT_TRUE(material->isDirty());
}

TEST(MaterialTest, a_new_material_with_an_empty_name_is_dirty) {
  EXPECT_TRUE(Material::create(String())->isDirty());
}

TEST(MaterialTest, naming_a_new_material_makes_it_dirty) {
  const auto material = Material::create();
  material->name("Oak");
  EXPECT_TRUE(material->isDirty());
}

TEST(MaterialTest, new_materials_are_equal) {
  EXPECT_TRUE(*Material::create() == *Material::create());
  EXPECT_TRUE(*Material::create("Oak") == *Material::create("Oak"));
  EXPECT_FALSE(*Material::create("Oak") == *Material::create("oak"));
  EXPECT_FALSE(*Material::create("Oak") == *Material::create());
}

TEST(MaterialTest, gives_the_shared_pointer_that_holds_it) {
  const auto material = Material::create("Oak");
  EXPECT_EQ(material->shared_from_this(), material);
}

TEST(MaterialTest, reading_leaves_it_clean) {
  const StoredObjects stored;
  const std::shared_ptr<const Material> material = stored.get<Material>();
  material->clone();
  material->thicknesses();
  material->code();
  EXPECT_TRUE(*material == *material);
  EXPECT_FALSE(material->isDirty());
  EXPECT_EQ(material->library(), stored.library());
}

const std::shared_ptr<const MaterialType> other_type = MaterialType::create("Other");
const std::shared_ptr<const Layer> other_layer = Layer::create("Other");
const std::shared_ptr<StructuralAsset> other_structural_asset =
    std::make_shared<Bare<StructuralAsset>>();
const std::shared_ptr<ThermalAsset> other_thermal_asset = std::make_shared<Bare<ThermalAsset>>();
const std::shared_ptr<Tag> other_tag = Tag::create("Other");

Field<Material> tags_field() {
  return {"tags", [](Material&) {}, [](Material& material) { material.addTag(other_tag); },
          [](const Material& material) { return material.tags().back() == other_tag; },
          Compared::Yes};
}

Field<Material> thicknesses_field() {
  return {"thicknesses", [](Material&) {},
          [](Material& material) {
            material.thicknesses(toModify) = {12.5, 23.0};
          },
          [](const Material& material) { return *material.thicknesses().rbegin() == 23.0; },
          Compared::Yes};
}

Field<Material> custom_values_field() {
  return {"custom_values", [](Material&) {},
          [](Material& material) { material.custom_value("Stored", "Other"); },
          [](const Material& material) {
            return material.custom_values().begin()->second == String("Other");
          },
          Compared::Yes};
}

Field<Material> presence_of_code_field() {
  return {"presence_of_code", [](Material&) {}, [](Material& material) { material.clear_code(); },
          [](const Material& material) { return !material.has_code(); }, Compared::Yes};
}

const std::vector<Field<Material>> fields = {
    VELDRA_FIELD(Material, name, String("Other")),
    VELDRA_FIELD(Material, description, String("Other")),
    tags_field(),
    VELDRA_FIELD(Material, type, other_type),
    VELDRA_FIELD(Material, comments, String("Other")),
    VELDRA_FIELD_THAT_IS(No, Material, code, String("Other")),
    presence_of_code_field(),
    VELDRA_FIELD(Material, cost, String("costs")),
    VELDRA_FIELD(Material, keynote, String()),
    VELDRA_FIELD(Material, label, String("Label")),
    VELDRA_FIELD(Material, manufacturer, String("Manufactured ")),
    VELDRA_FIELD(Material, mark, String("Other")),
    VELDRA_FIELD(Material, model, String("Other")),
    VELDRA_FIELD(Material, url, String("Other")),
    VELDRA_FIELD(Material, classification, String("Other")),
    VELDRA_FIELD(Material, shading_use_appearance, false),
    VELDRA_FIELD(Material, shading_color, Color(0.1, 0.2, 0.3, 0.5)),
    VELDRA_FIELD(Material, surface_pattern, Pattern(Pattern::Type::Lines, "Surface", 2.5, 45.0)),
    VELDRA_FIELD(Material, surface_pattern_color, Color(0.9, 0.6, 0.7, 0.8)),
    VELDRA_FIELD(Material, surface_pattern_alignment, Point2d(1.5, 2.0)),
    VELDRA_FIELD(Material, cut_pattern, Pattern()),
    VELDRA_FIELD(Material, cut_pattern_color, Color()),
    VELDRA_FIELD(Material, cut_layer, other_layer),
    VELDRA_FIELD(Material, appearance, String("Other")),
    VELDRA_FIELD(Material, structuralAsset, other_structural_asset),
    VELDRA_FIELD(Material, thermalAsset, other_thermal_asset),
    VELDRA_FIELD(Material, function, Material::Function(7)),
    thicknesses_field(),
    VELDRA_FIELD(Material, allow_custom_thickness, true),
    custom_values_field(),
};

class MaterialFieldTest : public FieldTest<Material> {};

VELDRA_FIELD_TESTS(MaterialFieldTest, Material, fields);
VELDRA_COPIED_FIELD_TESTS(MaterialFieldTest)

TEST(MaterialCodeTest, an_empty_code_is_a_code) {
  const auto material = Material::create();
  material->code(String());
  EXPECT_TRUE(material->has_code());
  EXPECT_TRUE(material->code().empty());
  EXPECT_TRUE(material->isDirty());
}

TEST(MaterialCodeTest, an_equal_code_leaves_it_clean) {
  const StoredObjects stored;
  const auto material = stored.get<Material>();
  ASSERT_TRUE(material->has_code());
  material->code("Coded");
  material->code(material->code());
  EXPECT_FALSE(material->isDirty());
}

TEST(MaterialCodeTest, clearing_drops_the_text) {
  const StoredObjects stored;
  const auto material = stored.get<Material>();
  material->clear_code();
  EXPECT_FALSE(material->has_code());
  EXPECT_TRUE(material->code().empty());
  EXPECT_TRUE(material->isDirty());
}

TEST(MaterialCodeTest, clearing_a_missing_code_makes_it_dirty) {
  const auto material = Material::create();
  material->clear_code();
  EXPECT_FALSE(material->has_code());
  EXPECT_TRUE(material->isDirty());
}

TEST(MaterialCodeTest, a_code_that_was_cleared_can_be_set_again) {
  const auto material = Material::create();
  material->code("A");
  material->clear_code();
  material->code("A");
  EXPECT_TRUE(material->has_code());
  EXPECT_EQ(material->code().utf8(), "A");
}

TEST(MaterialCodeTest, only_its_presence_counts_in_comparisons) {
  const auto with = [](const String& code) {
    const auto material = Material::create("Oak");
    material->code(code);
    return material;
  };
  EXPECT_TRUE(*with("A") == *with("B"));
  EXPECT_TRUE(*with("A") == *with(String()));
  EXPECT_FALSE(*with("A") == *Material::create("Oak"));
  EXPECT_FALSE(*Material::create("Oak") == *with(String()));
}

TEST(MaterialCodeTest, is_carried_by_clones_and_assignments_also_when_empty) {
  const auto material = Material::create("Oak");
  material->code(String());
  EXPECT_TRUE(material->clone()->has_code());
  const auto target = Material::create();
  *target = *material;
  EXPECT_TRUE(target->has_code());
  *target = *Material::create();
  EXPECT_FALSE(target->has_code());
}

TEST(MaterialThicknessesTest, access_for_changing_makes_it_dirty) {
  const auto material = Material::create();
  material->thicknesses(toModify);
  EXPECT_TRUE(material->isDirty());
}

TEST(MaterialThicknessesTest, access_for_changing_gives_the_set) {
  const auto material = Material::create();
  material->thicknesses(toModify).insert(22.0);
  material->thicknesses(toModify).insert(12.5);
  EXPECT_THAT(material->thicknesses(), ElementsAre(12.5, 22.0));
  EXPECT_EQ(&material->thicknesses(toModify), &material->thicknesses());
}

TEST(MaterialThicknessesTest, count_exactly_in_comparisons) {
  const auto with = [](const std::set<double>& thicknesses) {
    const auto material = Material::create("Oak");
    material->thicknesses(toModify) = thicknesses;
    return material;
  };
  EXPECT_TRUE(*with({12.5, 22.0}) == *with({22.0, 12.5}));
  EXPECT_TRUE(*with({0.0}) == *with({-0.0}));
  EXPECT_FALSE(*with({12.5}) == *with({12.5, 22.0}));
  EXPECT_FALSE(*with({12.5, 22.0}) == *with({12.5}));
  EXPECT_FALSE(*with({0.3}) == *with({0.1 + 0.2}));
}

// References.

TEST(MaterialReferencesTest, another_type_of_the_same_name_makes_it_dirty_and_stays_equal) {
  const StoredObjects stored;
  const auto material = stored.get<Material>();
  const auto copy = material->clone();
  const std::shared_ptr<const MaterialType> same_name = stored.get<MaterialType>();
  ASSERT_NE(same_name, material->type());
  material->type(same_name);
  EXPECT_TRUE(material->isDirty());
  EXPECT_EQ(material->type(), same_name);
  EXPECT_TRUE(*material == *copy);
}

TEST(MaterialReferencesTest, another_layer_of_the_same_name_makes_it_dirty_and_stays_equal) {
  const StoredObjects stored;
  const auto material = stored.get<Material>();
  const auto copy = material->clone();
  const std::shared_ptr<const Layer> same_name = stored.get<Layer>();
  ASSERT_NE(same_name, material->cut_layer());
  material->cut_layer(same_name);
  EXPECT_TRUE(material->isDirty());
  EXPECT_EQ(material->cut_layer(), same_name);
  EXPECT_TRUE(*material == *copy);
}

TEST(MaterialReferencesTest, another_asset_of_the_same_values_makes_it_dirty_and_stays_equal) {
  const StoredObjects stored;
  const auto twin = stored.library()->get<Material>(StoredObjects::twin_id);
  const auto structural = stored.get<Material>();
  structural->structuralAsset(twin->structuralAsset());
  EXPECT_TRUE(structural->isDirty());
  EXPECT_TRUE(*structural == *stored.get<Material>());
  const auto thermal = stored.get<Material>();
  thermal->thermalAsset(twin->thermalAsset());
  EXPECT_TRUE(thermal->isDirty());
  EXPECT_TRUE(*thermal == *stored.get<Material>());
}

TEST(MaterialReferencesTest, the_very_asset_is_equal_even_with_numbers_that_are_none) {
  const StoredObjects stored;
  const auto material = stored.library()->get<Material>(StoredObjects::third_id);
  ASSERT_FALSE(*material->structuralAsset() == *material->structuralAsset());
  EXPECT_TRUE(*material == *material->clone());
  EXPECT_FALSE(*material == *stored.library()->get<Material>(StoredObjects::third_id));
}

struct Reference {
  const char* name;
  void (*set)(Material&);
  void (*drop)(Material&);
};

void PrintTo(const Reference& reference, std::ostream* out) { *out << reference.name; }

class MaterialReferenceTest : public testing::TestWithParam<Reference> {};

TEST_P(MaterialReferenceTest, one_that_is_missing_counts_in_comparisons) {
  const auto with = Material::create("Oak");
  const auto without = Material::create("Oak");
  GetParam().set(*with);
  EXPECT_FALSE(*with == *without);
  EXPECT_FALSE(*without == *with);
  GetParam().drop(*with);
  EXPECT_TRUE(*with == *without);
}

TEST_P(MaterialReferenceTest, dropping_none_leaves_it_clean) {
  const auto material = Material::create();
  GetParam().drop(*material);
  EXPECT_FALSE(material->isDirty());
}

TEST_P(MaterialReferenceTest, setting_it_makes_it_dirty) {
  const auto material = Material::create();
  GetParam().set(*material);
  EXPECT_TRUE(material->isDirty());
}

TEST_P(MaterialReferenceTest, dropping_it_makes_it_dirty) {
  const StoredObjects stored;
  const auto material = stored.get<Material>();
  GetParam().drop(*material);
  EXPECT_TRUE(material->isDirty());
}

TEST_P(MaterialReferenceTest, a_clone_and_an_assignment_share_it) {
  const auto material = Material::create("Oak");
  GetParam().set(*material);
  const auto assigned = Material::create();
  *assigned = *material;
  for (const auto& copy : {material->clone(), assigned}) {
    EXPECT_EQ(copy->type(), material->type());
    EXPECT_EQ(copy->cut_layer(), material->cut_layer());
    EXPECT_EQ(copy->structuralAsset(), material->structuralAsset());
    EXPECT_EQ(copy->thermalAsset(), material->thermalAsset());
    EXPECT_EQ(copy->tags(), material->tags());
  }
}

INSTANTIATE_TEST_SUITE_P(
    , MaterialReferenceTest,
    testing::Values(
        Reference{"type", [](Material& material) { material.type(other_type); },
                  [](Material& material) { material.type(nullptr); }},
        Reference{"cut_layer", [](Material& material) { material.cut_layer(other_layer); },
                  [](Material& material) { material.cut_layer(nullptr); }},
        Reference{"structuralAsset",
                  [](Material& material) { material.structuralAsset(other_structural_asset); },
                  [](Material& material) { material.structuralAsset(nullptr); }},
        Reference{"thermalAsset",
                  [](Material& material) { material.thermalAsset(other_thermal_asset); },
                  [](Material& material) { material.thermalAsset(nullptr); }}),
    [](const testing::TestParamInfo<Reference>& reference) { return reference.param.name; });

// Values that are compared exactly.

TEST(MaterialValuesTest, any_value_is_accepted) {
  const auto material = Material::create();
  material->function(Material::Function(-2147483647 - 1));
  EXPECT_EQ(int(material->function()), -2147483647 - 1);
  material->shading_color(Color(-1e300, infinity, -infinity, 5.0));
  EXPECT_TRUE(material->shading_color() == Color(-1e300, infinity, -infinity, 5.0));
  material->cut_pattern(Pattern(Pattern::Type(2147483647), "", -0.0, 1e-320));
  EXPECT_EQ(material->cut_pattern().angle, 1e-320);
}

template <class Value>
void expect_to_make_it_dirty_and_unequal_to_itself(void (Material::*set)(const Value&),
                                                   const Value& value) {
  const auto material = Material::create();
  (material.get()->*set)(value);
  EXPECT_TRUE(material->isDirty());
  EXPECT_FALSE(*material == *material);
  EXPECT_TRUE(*material != *material);
}

TEST(MaterialValuesTest, a_nan_makes_it_dirty_and_unequal_to_itself) {
  const double nan = not_a_number;
  for (const Point2d& point : {Point2d(nan, 0.0), Point2d(0.0, nan)}) {
    expect_to_make_it_dirty_and_unequal_to_itself(&Material::surface_pattern_alignment, point);
  }
  for (const Color& color : {Color(nan, 0.0, 0.0, 0.0), Color(0.0, nan, 0.0, 0.0),
                             Color(0.0, 0.0, nan, 0.0), Color(0.0, 0.0, 0.0, nan)}) {
    expect_to_make_it_dirty_and_unequal_to_itself(&Material::cut_pattern_color, color);
  }
  const auto none = Pattern::Type::None;
  for (const Pattern& pattern : {Pattern(none, "", nan, 0.0), Pattern(none, "", 1.0, nan)}) {
    expect_to_make_it_dirty_and_unequal_to_itself(&Material::cut_pattern, pattern);
  }
}

TEST(MaterialValuesTest, minus_zero_equals_zero_and_leaves_it_clean) {
  const auto material = Material::create();
  material->shading_color(Color(-0.0, 0.0, -0.0, 0.0));
  material->surface_pattern_alignment(Point2d(-0.0, -0.0));
  EXPECT_FALSE(material->isDirty());
}

TEST(MaterialValuesTest, an_empty_text_equals_a_missing_one_and_leaves_it_clean) {
  const auto material = Material::create();
  material->name("");
  material->description("");
  material->comments("");
  material->cost("");
  material->keynote("");
  material->label("");
  material->manufacturer("");
  material->mark("");
  material->model("");
  material->url("");
  material->classification("");
  material->appearance("");
  material->surface_pattern(Pattern(Pattern::Type::None, "", 1.0, 0.0));
  material->cut_pattern(Pattern(Pattern::Type::None, "", 1.0, 0.0));
  EXPECT_FALSE(material->isDirty());
}

// Cloning and assigning.

TEST(MaterialCopyTest, a_clone_of_a_new_material_is_dirty) {
  const auto clone = Material::create()->clone();
  expect_defaults(*clone);
  EXPECT_TRUE(clone->isDirty());
}

TEST(MaterialCopyTest, a_clone_has_lists_of_its_own) {
  const StoredObjects stored;
  const auto material = stored.get<Material>();
  const auto clone = material->clone();
  clone->tags(toModify).clear();
  clone->thicknesses(toModify).clear();
  clone->clear_custom_values();
  EXPECT_TRUE(*material == *stored.get<Material>());
  EXPECT_FALSE(material->isDirty());
}

TEST(MaterialCopyTest, an_assignment_makes_it_dirty_even_without_a_difference) {
  const StoredObjects stored;
  const auto material = stored.get<Material>();
  *material = *stored.get<Material>();
  EXPECT_TRUE(material->isDirty());
  EXPECT_EQ(material->id(), StoredObjects::id);
  EXPECT_EQ(material->library(), stored.library());
}

TEST(MaterialCopyTest, an_assignment_takes_neither_id_nor_library_nor_cleanness) {
  const StoredObjects stored;
  const auto target = Material::create();
  const auto source = stored.get<Material>();
  *target = *source;
  EXPECT_EQ(target->id(), 0u);
  EXPECT_EQ(target->library(), nullptr);
  EXPECT_TRUE(target->isDirty());
  EXPECT_TRUE(*target == *source);
  EXPECT_FALSE(source->isDirty());
}

TEST(MaterialCopyTest, an_assignment_to_itself_keeps_its_values_and_makes_it_dirty) {
  const StoredObjects stored;
  const auto material = stored.get<Material>();
  const Material& itself = *material;
  *material = itself;
  EXPECT_TRUE(*material == *stored.get<Material>());
  EXPECT_TRUE(material->isDirty());
}

}  // namespace
}  // namespace veldra_tests
