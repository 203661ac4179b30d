// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <cmath>
#include <limits>

namespace veldra_tests {
namespace {

using Sheet = std::vector<std::shared_ptr<Composition>>;

std::shared_ptr<Composition> wall(const char* name = "Wall") {
  const auto brick = Material::create("Brick <hard>");
  brick->custom_value("Thermal conductivity [W/(m K)]", "0.5");
  const auto result = Composition::create(name);
  result->appendLayer({brick, Material::Function::None, 240});
  return result;
}

TEST(DrawnSheet, is_a_picture_with_the_layers_and_the_names_of_all_build_ups) {
  const auto svg = kit::draw_sheet({wall("Wall & more"), wall("Second")}, Unit::Millimetres);
  EXPECT_THAT(svg, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg "));
  EXPECT_THAT(svg, HasSubstr("<title>Wall &amp; more, Second</title>"));
  EXPECT_THAT(svg, HasSubstr("Brick &lt;hard&gt;"));
  EXPECT_EQ(svg, kit::draw_sheet({wall("Wall & more"), wall("Second")}, Unit::Millimetres));
}

TEST(DrawnSheet, goes_by_the_rules) {
  kit::DrawingRules german;
  german.locale = "de_AT";
  EXPECT_THAT(kit::draw_sheet({wall()}, Unit::Millimetres, german), HasSubstr("Gesamtdicke"));
  EXPECT_THAT(kit::draw_sheet({wall()}, Unit::Inches), HasSubstr("thicknesses in inches"));
  kit::DrawingRules lying;
  lying.lying = true;
  EXPECT_NE(kit::draw_sheet({wall()}, Unit::Millimetres, lying),
            kit::draw_sheet({wall()}, Unit::Millimetres));
}

TEST(DrawnSheet, of_nothing_is_empty_paper) {
  EXPECT_THAT(kit::draw_sheet({}, Unit::Millimetres), Not(HasSubstr("<text")));
}

TEST(DrawnPage, holds_the_picture_and_tells_its_language) {
  const auto svg = kit::draw_sheet({wall()}, Unit::Millimetres);
  const auto page = kit::page_of(svg, "Wall & more", "de_AT");
  EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n<html lang=\"de\">"));
  EXPECT_THAT(page, HasSubstr("<title>Wall &amp; more</title>"));
  EXPECT_THAT(page, HasSubstr(svg.substr(svg.find("<svg"))));
}

TEST(CountedResistance, is_none_of_a_ventilated_layer_and_of_an_unknown_one) {
  const auto build_up = wall();
  build_up->appendLayer({Material::create("Unknown"), Material::Function::None, 10});
  auto heat = kit::transmission_of(*build_up, Unit::Millimetres);
  EXPECT_DOUBLE_EQ(heat.counted_resistance(0).value(), 0.48);
  EXPECT_EQ(heat.counted_resistance(1), std::nullopt);
  EXPECT_THROW(heat.counted_resistance(2), std::out_of_range);
  heat.ventilated = 1;
  EXPECT_EQ(heat.counted_resistance(0), std::nullopt);
}

TEST(DisplayWidth, counts_columns_and_not_characters) {
  EXPECT_EQ(kit::display_width(""), 0U);
  EXPECT_EQ(kit::display_width("Ziegel"), 6U);
  EXPECT_EQ(kit::display_width("Dämmung"), 7U);
  EXPECT_EQ(kit::display_width("木材"), 4U);
  EXPECT_EQ(kit::display_width("A\xCC\x8A"), 1U);
  EXPECT_EQ(kit::display_width("ab\xFF"
                               "cd"),
            2U);
}

TEST(LeadingColumns, end_at_a_whole_character) {
  EXPECT_EQ(kit::leading_columns("Dämmung", 2), "Dä");
  EXPECT_EQ(kit::leading_columns("木材", 3), "木");
  EXPECT_EQ(kit::leading_columns("木材", 4), "木材");
  EXPECT_EQ(kit::leading_columns("ab", 0), "");
}

TEST(NumberText, is_short_for_people) {
  EXPECT_EQ(kit::rounded_number(2.50, 3), "2.5");
  EXPECT_EQ(kit::rounded_number(240, 2), "240");
  EXPECT_EQ(kit::rounded_number(0.0004, 2), "0.0004");
  EXPECT_EQ(kit::rounded_number(std::nan(""), 2), "?");
  EXPECT_EQ(kit::fixed_number(2.5, 3), "2.500");
  EXPECT_EQ(kit::fixed_number(1.5e9, 3), "1.5·10⁹");
  EXPECT_EQ(kit::short_number(2e-7, 3), "2·10⁻⁷");
  EXPECT_EQ(kit::short_number(-std::numeric_limits<double>::infinity(), 3), "-∞");
}

}  // namespace
}  // namespace veldra_tests
