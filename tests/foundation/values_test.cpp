// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/names.hpp"

#include <cstddef>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <type_traits>
#include <vector>

namespace veldra_tests {
namespace {

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double smallest = std::numeric_limits<double>::denorm_min();

template <class Enumeration, class Underlying>
constexpr bool is_stored_as() {
  return std::is_enum<Enumeration>::value &&
         std::is_same<typename std::underlying_type<Enumeration>::type, Underlying>::value;
}

template <class Enumeration>
constexpr bool is_scoped() {
  return !std::is_convertible<Enumeration, long long>::value;
}

static_assert(is_stored_as<Unit, int>() && is_scoped<Unit>(), "");
static_assert(int(Unit::Inches) == 0, "");
static_assert(int(Unit::Millimetres) == 1, "");

static_assert(is_stored_as<ObjectType, int>() && is_scoped<ObjectType>(), "");
static_assert(int(ObjectType::Tag) == 1, "");
static_assert(int(ObjectType::Asset) == 2, "");
static_assert(int(ObjectType::MaterialType) == 3, "");
static_assert(int(ObjectType::Material) == 4, "");
static_assert(int(ObjectType::Composition) == 5, "");
static_assert(int(ObjectType::CustomProperty) == 6, "");
static_assert(int(ObjectType::Layer) == 7, "");

static_assert(is_stored_as<AssetType, int>() && is_scoped<AssetType>(), "");
static_assert(int(AssetType::Thermal) == 1, "");
static_assert(int(AssetType::Structural) == 5, "");

static_assert(is_stored_as<Pattern::Type, int>() && is_scoped<Pattern::Type>(), "");
static_assert(int(Pattern::Type::None) == -1, "");
static_assert(int(Pattern::Type::Lines) == 0, "");

static_assert(is_stored_as<Material::Function, int>() && is_scoped<Material::Function>(), "");
static_assert(int(Material::Function::None) == 0, "");
static_assert(int(Material::Function::Structure) == 1, "");

static_assert(is_stored_as<Composition::Type, unsigned>() && is_scoped<Composition::Type>(), "");
static_assert(unsigned(Composition::Type::Wall) == 1, "");
static_assert(unsigned(Composition::Type::Floor) == 2, "");
static_assert(unsigned(Composition::Type::Roof) == 4, "");
static_assert(unsigned(Composition::Type::Other) == 128, "");

static_assert(is_stored_as<IdMapping::Status, int>() && !is_scoped<IdMapping::Status>(), "");
static_assert(IdMapping::Inserted == 0, "");
static_assert(IdMapping::Existing == 1, "");
static_assert(IdMapping::Updated == 2, "");

static_assert(is_stored_as<Library::Reactor::Decision, int>() &&
                  !is_scoped<Library::Reactor::Decision>(),
              "");
static_assert(Library::Reactor::UseExisting == 1, "");
static_assert(Library::Reactor::Overwrite == 2, "");
static_assert(Library::Reactor::Rename == 3, "");

static_assert(ObjectTraits<veldra::Tag>::type == ObjectType::Tag, "");
static_assert(ObjectTraits<veldra::Asset>::type == ObjectType::Asset, "");
static_assert(ObjectTraits<veldra::MaterialType>::type == ObjectType::MaterialType, "");
static_assert(ObjectTraits<Material>::type == ObjectType::Material, "");
static_assert(ObjectTraits<Composition>::type == ObjectType::Composition, "");
static_assert(ObjectTraits<veldra::CustomProperty>::type == ObjectType::CustomProperty, "");
static_assert(ObjectTraits<veldra::Layer>::type == ObjectType::Layer, "");
static_assert(std::is_same<decltype(ObjectTraits<Material>::type), const ObjectType>::value, "");

static_assert(std::is_empty<ToModify>::value, "");
static_assert(std::is_same<decltype(toModify), const ToModify>::value, "");

static_assert(offsetof(Color, red) == 0, "");
static_assert(offsetof(Color, green) == 1 * sizeof(double), "");
static_assert(offsetof(Color, blue) == 2 * sizeof(double), "");
static_assert(offsetof(Color, alpha) == 3 * sizeof(double), "");
static_assert(sizeof(Color) == 4 * sizeof(double), "");
static_assert(offsetof(Point2d, x) == 0, "");
static_assert(offsetof(Point2d, y) == sizeof(double), "");
static_assert(sizeof(Point2d) == 2 * sizeof(double), "");
static_assert(offsetof(Pattern, type) < offsetof(Pattern, name), "");
static_assert(offsetof(Pattern, name) < offsetof(Pattern, scale), "");
static_assert(offsetof(Pattern, scale) < offsetof(Pattern, angle), "");
static_assert(offsetof(Pattern, angle) < offsetof(Pattern, cross), "");

template <class Value>
void expect_equal(const Value& left, const Value& right) {
  EXPECT_TRUE(left == right);
  EXPECT_TRUE(right == left);
  EXPECT_FALSE(left != right);
  EXPECT_FALSE(right != left);
}

template <class Value>
void expect_unequal(const Value& left, const Value& right) {
  EXPECT_FALSE(left == right);
  EXPECT_FALSE(right == left);
  EXPECT_TRUE(left != right);
  EXPECT_TRUE(right != left);
}

TEST(ObjectTraitsTest, its_constant_can_be_referred_to) {
  const ObjectType& type = ObjectTraits<Material>::type;
  EXPECT_EQ(type, ObjectType::Material);
}

TEST(ColorTest, is_transparent_black_by_default) {
  const Color color;
  EXPECT_EQ(color.red, 0.0);
  EXPECT_EQ(color.green, 0.0);
  EXPECT_EQ(color.blue, 0.0);
  EXPECT_EQ(color.alpha, 0.0);
}

TEST(ColorTest, takes_its_components_in_order) {
  const Color color(0.1, 0.2, 0.3, 0.4);
  EXPECT_EQ(color.red, 0.1);
  EXPECT_EQ(color.green, 0.2);
  EXPECT_EQ(color.blue, 0.3);
  EXPECT_EQ(color.alpha, 0.4);
}

TEST(ColorTest, a_difference_in_any_component_counts) {
  const Color color(0.1, 0.2, 0.3, 0.4);
  expect_equal(color, Color(0.1, 0.2, 0.3, 0.4));
  expect_unequal(color, Color(0.9, 0.2, 0.3, 0.4));
  expect_unequal(color, Color(0.1, 0.9, 0.3, 0.4));
  expect_unequal(color, Color(0.1, 0.2, 0.9, 0.4));
  expect_unequal(color, Color(0.1, 0.2, 0.3, 0.9));
}

TEST(ColorTest, is_compared_without_tolerance) {
  expect_unequal(Color(0, 0, 0, 0), Color(0, 0, 0, smallest));
  expect_unequal(Color(0.3, 0, 0, 0), Color(0.1 + 0.2, 0, 0, 0));
}

TEST(ColorTest, components_compare_as_numbers) {
  expect_equal(Color(0.0, 0, 0, infinity), Color(-0.0, 0, 0, infinity));
  const Color nowhere(0, not_a_number, 0, 0);
  expect_unequal(nowhere, nowhere);
}

TEST(ColorTest, copies) {
  const Color color(0.1, 0.2, 0.3, 0.4);
  Color copy;
  copy = color;
  expect_equal(copy, color);
  expect_equal(Color(color), color);
}

TEST(Point2dTest, is_the_origin_by_default) {
  const Point2d point;
  EXPECT_EQ(point.x, 0.0);
  EXPECT_EQ(point.y, 0.0);
}

TEST(Point2dTest, takes_x_before_y) {
  const Point2d point(1.5, -2.5);
  EXPECT_EQ(point.x, 1.5);
  EXPECT_EQ(point.y, -2.5);
}

TEST(Point2dTest, both_coordinates_count_exactly) {
  const Point2d point(1.5, -2.5);
  expect_equal(point, Point2d(1.5, -2.5));
  expect_unequal(point, Point2d(1.0, -2.5));
  expect_unequal(point, Point2d(1.5, 2.5));
  expect_unequal(Point2d(), Point2d(0.0, smallest));
  expect_equal(Point2d(0.0, -0.0), Point2d(-0.0, 0.0));
  const Point2d nowhere(not_a_number, 0.0);
  expect_unequal(nowhere, nowhere);
}

TEST(PatternTest, is_no_pattern_by_default) {
  const Pattern pattern;
  EXPECT_EQ(pattern.type, Pattern::Type::None);
  EXPECT_TRUE(pattern.name.empty());
  EXPECT_EQ(pattern.scale, 1.0);
  EXPECT_EQ(pattern.angle, 0.0);
  EXPECT_FALSE(pattern.cross);
  expect_equal(pattern, Pattern());
}

TEST(PatternTest, of_three_values_has_lines_and_no_name) {
  const Pattern pattern(2.0, 45.0, true);
  EXPECT_EQ(pattern.type, Pattern::Type::Lines);
  EXPECT_TRUE(pattern.name.empty());
  EXPECT_EQ(pattern.scale, 2.0);
  EXPECT_EQ(pattern.angle, 45.0);
  EXPECT_TRUE(pattern.cross);
}

TEST(PatternTest, of_four_values_is_not_crossed) {
  const Pattern pattern(Pattern::Type(17), "Brick", 2.0, 45.0);
  EXPECT_EQ(pattern.type, Pattern::Type(17));
  EXPECT_EQ(pattern.name.utf8(), "Brick");
  EXPECT_EQ(pattern.scale, 2.0);
  EXPECT_EQ(pattern.angle, 45.0);
  EXPECT_FALSE(pattern.cross);
}

TEST(PatternTest, of_the_default_numbers_differs_from_no_pattern_by_its_type) {
  expect_unequal(Pattern(1.0, 0.0, false), Pattern());
}

TEST(PatternTest, a_difference_in_any_field_counts) {
  const Pattern pattern(Pattern::Type::Lines, "Brick", 2.0, 45.0);
  const std::vector<void (*)(Pattern&)> changes = {
      [](Pattern& changed) { changed.type = Pattern::Type(1); },
      [](Pattern& changed) { changed.name = "Brick "; },
      [](Pattern& changed) { changed.name = "brick"; },
      [](Pattern& changed) { changed.name = String(); },
      [](Pattern& changed) { changed.scale = 2.5; },
      [](Pattern& changed) { changed.angle = not_a_number; },
      [](Pattern& changed) { changed.angle = -45.0; },
      [](Pattern& changed) { changed.cross = true; },
  };
  expect_equal(pattern, Pattern(Pattern::Type::Lines, "Brick", 2.0, 45.0));
  for (const auto change : changes) {
    Pattern changed = pattern;
    change(changed);
    expect_unequal(pattern, changed);
  }
}

TEST(PatternTest, an_empty_name_equals_a_missing_one) {
  expect_equal(Pattern(Pattern::Type::None, "", 1.0, 0.0), Pattern());
}

TEST(PatternTest, a_copy_has_a_name_of_its_own) {
  auto original = std::make_unique<Pattern>(Pattern::Type::Lines, "Brick", 2.0, 45.0);
  const Pattern copy(*original);
  Pattern target;
  target = *original;
  EXPECT_NE(copy.name.c_str(), original->name.c_str());
  EXPECT_NE(target.name.c_str(), original->name.c_str());
  original.reset();
  EXPECT_EQ(copy.name.utf8(), "Brick");
  expect_equal(target, copy);
}

TEST(PatternTest, can_be_assigned_to_itself) {
  Pattern pattern(Pattern::Type::Lines, "Brick", 2.0, 45.0);
  const Pattern& itself = pattern;
  pattern = itself;
  expect_equal(pattern, Pattern(Pattern::Type::Lines, "Brick", 2.0, 45.0));
}

TEST(ObjectKeyTest, names_no_object_by_default) {
  EXPECT_EQ(int(ObjectKey().type), 0);
  EXPECT_EQ(ObjectKey().id, 0u);
}

TEST(ObjectKeyTest, both_kind_and_id_count) {
  const ObjectKey key(ObjectType::Material, 7);
  EXPECT_EQ(key.type, ObjectType::Material);
  EXPECT_EQ(key.id, 7u);
  expect_equal(key, ObjectKey(ObjectType::Material, 7));
  expect_unequal(key, ObjectKey(ObjectType::Material, 8));
  expect_unequal(key, ObjectKey(ObjectType::Composition, 7));
}

TEST(ObjectKeyTest, sorts_by_kind_before_id) {
  EXPECT_TRUE(ObjectKey(ObjectType(3), 1) < ObjectKey(ObjectType(4), 0));
  EXPECT_FALSE(ObjectKey(ObjectType(4), 0) < ObjectKey(ObjectType(3), 1));
  EXPECT_TRUE(ObjectKey(ObjectType(3), 1) < ObjectKey(ObjectType(3), 2));
  EXPECT_FALSE(ObjectKey(ObjectType(3), 2) < ObjectKey(ObjectType(3), 1));
  EXPECT_FALSE(ObjectKey(ObjectType(3), 1) < ObjectKey(ObjectType(3), 1));
}

TEST(ObjectKeyTest, ids_are_unsigned) {
  EXPECT_TRUE(ObjectKey(ObjectType::Tag, 1) < ObjectKey(ObjectType::Tag, 4294967295u));
}

TEST(ObjectKeyTest, sorts_in_sets_and_maps) {
  const std::set<ObjectKey> keys = {{ObjectType::Layer, 1},
                                    {ObjectType::Material, 4294967295u},
                                    {ObjectType::Tag, 9},
                                    {ObjectType::Material, 2},
                                    {ObjectType::Tag, 9}};
  EXPECT_THAT(keys, ElementsAre(ObjectKey(ObjectType::Tag, 9), ObjectKey(ObjectType::Material, 2),
                                ObjectKey(ObjectType::Material, 4294967295u),
                                ObjectKey(ObjectType::Layer, 1)));
  std::map<ObjectKey, bool> results;
  results[{ObjectType::Tag, 9}] = true;
  EXPECT_TRUE((results[{ObjectType::Tag, 9}]));
}

}  // namespace
}  // namespace veldra_tests
