// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <cmath>
#include <limits>
#include <vector>

namespace veldra_tests {
namespace {

const double nan = std::numeric_limits<double>::quiet_NaN();

/// Values that are written and read again.
class RowsValues : public LibraryTest {
 protected:
  /// The object as another handle on the file reads it.
  template <class T>
  std::shared_ptr<T> read_again(const std::shared_ptr<T>& object) {
    const unsigned id = object->id();
    reopen();
    return library->get<T>(id);
  }
};

TEST_F(RowsValues, full_objects_come_back_as_they_were) {
  const auto wall = library->save(full_composition("Wall"));
  const auto oak = library->save(full_material("Oak"));
  const std::string wall_values = values_of(wall);
  EXPECT_EQ(wall_values, values_of(full_composition("Wall")));
  const auto wall_again = read_again(wall);
  ASSERT_TRUE(wall_again);
  EXPECT_EQ(values_of(wall_again), wall_values);
  EXPECT_TRUE(*wall_again == *wall);
  const auto oak_again = read_again(oak);
  ASSERT_TRUE(oak_again);
  EXPECT_EQ(values_of(oak_again), values_of(full_material("Oak")));
  EXPECT_TRUE(*oak_again == *oak);
}

TEST_F(RowsValues, objects_of_defaults_come_back_as_they_were) {
  const auto material = library->save(Material::create("Plain"));
  const auto composition = library->save(Composition::create("Plain"));
  EXPECT_EQ(values_of(read_again(material)), values_of(material));
  EXPECT_EQ(values_of(read_again(composition)), values_of(composition));
}

TEST_F(RowsValues, saving_what_was_read_and_reading_it_again_changes_nothing) {
  const auto wall = read_again(library->save(full_composition("Wall")));
  const std::string before = rows();
  wall->layer(0, toModify);
  library->save(wall);
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(values_of(library->get<Composition>(1)), values_of(wall));
}

class RowsTexts : public RowsValues, public testing::WithParamInterface<std::string> {};

TEST_P(RowsTexts, come_back_in_every_field_of_a_material) {
  const String text(GetParam().c_str());
  const auto material = Material::create(text);
  material->description(text);
  material->comments(text);
  material->code(text);
  material->cost(text);
  material->keynote(text);
  material->label(text);
  material->manufacturer(text);
  material->mark(text);
  material->model(text);
  material->url(text);
  material->classification(text);
  material->appearance(text);
  material->surface_pattern(Pattern(Pattern::Type::Lines, text, 1.0, 0.0));
  material->cut_pattern(Pattern(Pattern::Type::Lines, text, 1.0, 0.0));
  material->tags(toModify) = {Tag::create(text)};
  material->type(MaterialType::create(text));
  material->cut_layer(Layer::create(text));
  material->custom_value(text, text);
  const auto again = read_again(library->save(material));
  ASSERT_TRUE(again);
  EXPECT_TRUE(values_of(again) == values_of(material));
  EXPECT_EQ(again->code().utf8(), GetParam());
  EXPECT_EQ(again->type()->name().utf8(), GetParam());
}

TEST_P(RowsTexts, come_back_in_every_field_of_a_composition) {
  const String text(GetParam().c_str());
  const auto composition = Composition::create(text);
  composition->description(text);
  composition->comments(text);
  composition->tags(toModify) = {Tag::create(text)};
  composition->entity_layer(Layer::create(text));
  composition->custom_value(text, text);
  const auto again = read_again(library->save(composition));
  ASSERT_TRUE(again);
  EXPECT_TRUE(values_of(again) == values_of(composition));
}

TEST_P(RowsTexts, are_stored_as_utf8) {
  library->save(Layer::create(GetParam().c_str()));
  EXPECT_EQ(value("SELECT name FROM Layer"), "'" + GetParam() + "'");
}

INSTANTIATE_TEST_SUITE_P(All, RowsTexts,
                         testing::Values("", " ", "plain", "Gl\xC3\xA4tte", "\xE2\x82\xAC",
                                         "\xF0\x9F\xA7\xB1", "\xF4\x8F\xBF\xBF", "\xEF\xBF\xBF",
                                         "\xEF\xBB\xBF"
                                         "x",
                                         "\xED\x9F\xBF\xEE\x80\x80", "\x7F\xC2\x80", "a\nb\r\tc",
                                         "it's \"so\"", "?1 :name @x $y",
                                         std::string(1 << 20, 'x') + "\xC3\xA9"));

// Each unit takes three bytes, so the room for a text is more than the number of its units.
TEST_F(RowsValues, texts_of_wide_characters_come_back_at_any_length) {
  std::string text;
  for (int length = 1; length != 700; ++length) {
    text += "\xE2\x82\xAC";
    if (length % 85 > 1) continue;
    const auto layer = library->save(Layer::create(text.c_str()));
    EXPECT_EQ(library->get<Layer>(layer->id())->name().utf8(), text) << length;
  }
}

TEST_F(RowsValues, numbers_come_back_bit_by_bit) {
  const std::vector<double> numbers = {1.0 / 3,
                                       -1.0 / 3,
                                       0.1,
                                       5e-324,
                                       -5e-324,
                                       2.2250738585072011e-308,
                                       std::numeric_limits<double>::min(),
                                       std::numeric_limits<double>::max(),
                                       std::numeric_limits<double>::lowest(),
                                       std::numeric_limits<double>::infinity(),
                                       -std::numeric_limits<double>::infinity(),
                                       9007199254740993.0,
                                       1e300};
  for (std::size_t index = 0; index != numbers.size(); ++index) {
    const double number = numbers[index];
    const auto material = Material::create(std::to_string(index).c_str());
    material->shading_color(Color(number, -number, number, -number));
    material->surface_pattern(Pattern(number, -number, true));
    material->surface_pattern_color(Color(-number, number, -number, number));
    material->surface_pattern_alignment(Point2d(number, -number));
    material->cut_pattern(Pattern(-number, number, false));
    material->cut_pattern_color(Color(number, number, -number, -number));
    material->thicknesses(toModify) = {number, -number};
    const auto composition = Composition::create(material->name());
    composition->appendLayer({material, Material::Function::None, number});
    composition->variable_layer_min_thickness(number);
    composition->variable_layer_max_thickness(-number);
    const auto again = read_again(library->save(composition));
    ASSERT_TRUE(again) << number;
    EXPECT_EQ(values_of(again), values_of(composition)) << number;
    EXPECT_TRUE(*again == *composition) << number;
  }
}

TEST_F(RowsValues, a_nan_is_stored_as_null_where_a_number_may_be_absent) {
  const auto composition = Composition::create("Wall");
  composition->appendLayer({Material::create("Oak"), Material::Function::None, nan});
  composition->variable_layer_min_thickness(nan);
  library->save(composition);
  EXPECT_EQ(value("SELECT value_thickness FROM Composition_layers"), "NULL");
  EXPECT_EQ(value("SELECT variable_layer_min_thickness FROM Composition"), "NULL");
  const auto again = read_again(composition);
  ASSERT_TRUE(again);
  EXPECT_TRUE(std::isnan(again->layer(0).thickness()));
  EXPECT_TRUE(std::isnan(again->variable_layer_min_thickness()));
}

TEST_F(RowsValues, a_maximum_of_nan_comes_back_unset) {
  const auto composition = Composition::create("Wall");
  composition->variable_layer_max_thickness(nan);
  library->save(composition);
  EXPECT_EQ(value("SELECT variable_layer_max_thickness FROM Composition"), "NULL");
  EXPECT_FALSE(read_again(composition)->has_variable_layer_max_thickness());
}

TEST_F(RowsValues, a_nan_among_the_thicknesses_is_not_written) {
  const auto material = Material::create("Oak");
  material->thicknesses(toModify) = {nan};
  library->save(material);
  EXPECT_THAT(PlainDatabase(path).query("SELECT * FROM Material_thicknesses"), IsEmpty());
  EXPECT_THAT(library->get<Material>(1)->thicknesses(), IsEmpty());
}

TEST_F(RowsValues, numbers_of_a_host_s_own_enumerators_are_kept) {
  const auto material = Material::create("Oak");
  material->function(static_cast<Material::Function>(-7));
  material->cut_pattern(Pattern(static_cast<Pattern::Type>(2147483647), "x", 1.0, 0.0));
  material->surface_pattern(Pattern(static_cast<Pattern::Type>(-2147483647 - 1), "x", 1.0, 0.0));
  const auto again = read_again(library->save(material));
  EXPECT_EQ(static_cast<int>(again->function()), -7);
  EXPECT_EQ(static_cast<int>(again->cut_pattern().type), 2147483647);
  EXPECT_EQ(static_cast<int>(again->surface_pattern().type), -2147483647 - 1);
}

TEST_F(RowsValues, a_variable_layer_of_0_is_not_an_unset_one) {
  const auto composition = Composition::create("Wall");
  composition->variable_layer(0);
  composition->variable_layer_max_thickness(0.0);
  library->save(composition);
  EXPECT_EQ(value("SELECT variable_layer FROM Composition"), "0");
  EXPECT_EQ(value("SELECT variable_layer_max_thickness FROM Composition"), "0");
  const auto again = read_again(composition);
  EXPECT_TRUE(again->has_variable_layer());
  EXPECT_TRUE(again->has_variable_layer_max_thickness());
}

TEST_F(RowsValues, the_largest_indices_come_back) {
  {
    PlainDatabase file(path);
    put_composition(file, {{"id", "1"},
                           {"name", "'Wall'"},
                           {"first_core_layer", "4294967294"},
                           {"last_core_layer", "4294967295"},
                           {"structural_layer", "4294967293"},
                           {"variable_layer", "4294967292"}});
  }
  const std::string before = rows();
  const auto composition = library->get<Composition>(1);
  EXPECT_EQ(composition->first_core_layer(), 4294967294u);
  EXPECT_EQ(composition->last_core_layer(), 4294967295u);
  EXPECT_EQ(composition->structural_layer(), 4294967293u);
  EXPECT_EQ(composition->variable_layer(), 4294967292u);
  composition->tags(toModify);
  library->save(composition);
  EXPECT_EQ(rows(), before);
}

TEST_F(RowsValues, many_elements_come_back_in_their_order) {
  const auto material = Material::create("Oak");
  std::vector<std::shared_ptr<Tag>> tags;
  for (int number = 0; number != 300; ++number) {
    tags.push_back(Tag::create(std::to_string(number * 7919 % 300).c_str()));
    material->thicknesses(toModify).insert(number * 0.1);
    material->custom_value(String(("property " + std::to_string(number)).c_str()), "x");
  }
  tags.insert(tags.end(), tags.begin(), tags.begin() + 100);
  material->tags(toModify) = tags;
  const auto composition = Composition::create("Wall");
  for (int number = 0; number != 300; ++number) {
    composition->appendLayer({material, Material::Function::None, 300.0 - number});
  }
  const auto again = read_again(library->save(composition));
  ASSERT_TRUE(again);
  EXPECT_TRUE(values_of(again) == values_of(composition));
}

}  // namespace
}  // namespace veldra_tests
