// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <limits>

namespace veldra_tests {
namespace {

using kit::Value;

const kit::Fields<Material>& materials() {
  static const kit::Fields<Material> fields;
  return fields;
}

const kit::Fields<Composition>& compositions() {
  static const kit::Fields<Composition> fields;
  return fields;
}

Value read(const std::string& field, const std::string& text, Unit unit = Unit::Millimetres) {
  return kit::value_from_text(materials().at(field), text, unit);
}

Value read_for_composition(const std::string& field, const std::string& text) {
  return kit::value_from_text(compositions().at(field), text, Unit::Millimetres);
}

std::string refused(const std::string& field, const std::string& text) {
  return error_of([&] { read(field, text); });
}

TEST(ValueFromText, of_a_position_counts_from_1_and_back) {
  for (const char* field :
       {"first_core_layer", "last_core_layer", "structural_layer", "variable_layer"}) {
    EXPECT_EQ(read_for_composition(field, "3"), Value(2)) << field;
    EXPECT_EQ(kit::field_text(compositions().at(field), Value(2)), "3") << field;
    EXPECT_EQ(kit::field_text(ObjectType::Composition, field, Value(2)), "3") << field;
    EXPECT_EQ(
        error_of([&] { read_for_composition(field, "0"); }),
        std::string("'0' is no value for '") + field + "': it must be a position, counted from 1");
  }
  EXPECT_EQ(kit::field_text(compositions().at("variable_layer"), Value()), "");
  EXPECT_EQ(kit::field_text(ObjectType::Composition, "custom_values.a", Value("b")), "b");
}

TEST(FieldText, has_words_for_functions_that_are_read_back) {
  EXPECT_EQ(kit::field_text(materials().at("function"), Value(1)), "structure");
  EXPECT_EQ(kit::field_text(materials().at("function"), Value(7)), "7");
  EXPECT_EQ(kit::field_text(materials().at("function"), Value()), "");
  const Value layers = Value::Layers{{"a; b", 1.5, 0}, {"c", 2, 1}, {"d", 3, -4}};
  const auto& field = compositions().at("layers");
  EXPECT_EQ(kit::field_text(field, layers), "\"a; b\" | 1.5 | none; c | 2 | structure; d | 3 | -4");
  EXPECT_EQ(read_for_composition("layers", kit::field_text(field, layers)), layers);
}

TEST(ValueFromText, is_of_the_kind_of_the_field) {
  EXPECT_EQ(read("manufacturer", " Ziegelwerk "), Value(" Ziegelwerk "));
  EXPECT_EQ(read("allow_custom_thickness", "No"), Value(false));
  EXPECT_EQ(read("allow_custom_thickness", " true "), Value(true));
  EXPECT_EQ(read("function", "1"), Value(1));
  EXPECT_EQ(read("function", "Structure"), Value(1));
  EXPECT_EQ(read("conductivity", "0.81 W/mK"), Value(0.81));
  EXPECT_EQ(read("conductivity", "0.81 W/(m·K)"), Value(0.81));
  EXPECT_EQ(read("function", "none"), Value(0));
  EXPECT_EQ(read("conductivity", "0.81"), Value(0.81));
  EXPECT_EQ(read("tags", "a; \"b;c\" ;d"), Value(Value::Texts{"a", "b;c", "d"}));
  EXPECT_EQ(read("thicknesses", "115; 240"), Value(Value::Numbers{115, 240}));
  EXPECT_EQ(read("shading_color", "1; 0.5; 0; 1"), Value(Color(1, 0.5, 0, 1)));
  EXPECT_EQ(read("shading_color", "#ff0080"), Value(Color(1, 0, 128 / 255.0, 1)));
  EXPECT_EQ(read("cut_pattern", "0; Concrete; 1; 45; no"),
            Value(Pattern(Pattern::Type::Lines, "Concrete", 1, 45)));
  EXPECT_EQ(read("surface_pattern_alignment", "1; -2"), Value(Point2d(1, -2)));
  EXPECT_EQ(read_for_composition("layers", "Brick | 240 mm | structure; \"Air | still\" | 40"),
            Value(Value::Layers{{"Brick", 240, 1}, {"Air | still", 40, 0}}));
  EXPECT_EQ(read_for_composition("type", " ROOF "), Value("roof"));
}

TEST(ValueFromText, of_an_empty_text_is_nothing) {
  EXPECT_EQ(read("manufacturer", ""), Value());
  EXPECT_EQ(read("conductivity", "  "), Value());
  EXPECT_EQ(read("tags", " "), Value());
}

TEST(ValueFromText, has_its_number_in_the_unit_of_the_field) {
  EXPECT_EQ(read("thicknesses", "100 mm; 10cm; 0.1 m"), Value(Value::Numbers{100, 100, 100}));
  EXPECT_EQ(read("thicknesses", "4 in"), Value(Value::Numbers{101.6}));
  EXPECT_EQ(read("thicknesses", "4 in", Unit::Inches), Value(Value::Numbers{4}));
  const Value foot = read("thicknesses", "1 ft", Unit::Inches);
  EXPECT_DOUBLE_EQ(foot.as<Value::Numbers>().front(), 12);
  EXPECT_EQ(read("conductivity", "0.035 W/(m K)"), Value(0.035));
  EXPECT_EQ(read("conductivity", "0.035 W/(mK)"), Value(0.035));
  EXPECT_EQ(read("density", "1.8 g/cm³"), Value(1800.0));
  EXPECT_EQ(read("density", "1800 kg/m3"), Value(1800.0));
  EXPECT_EQ(read("specific_heat", "1 kJ/(kg K)"), Value(1000.0));
  EXPECT_EQ(read("resistance", "0.18 m²K/W"), Value(0.18));
}

TEST(ValueFromText, tells_the_field_the_value_and_what_is_allowed) {
  EXPECT_EQ(
      refused("conductivity", "much"),
      "'much' is no value for 'conductivity': it must be a number, in W/(m K) or with a unit");
  EXPECT_EQ(refused("conductivity", "1 mm"),
            "'1 mm' is no value for 'conductivity': 'mm' is none of its units W/(mK), W/mK");
  EXPECT_EQ(refused("conductivity", "0,035"),
            "'0,035' is no value for 'conductivity': numbers have a point");
  EXPECT_EQ(refused("conductivity", "-1"),
            "'-1' is no value for 'conductivity': it must be 0 or greater");
  EXPECT_EQ(refused("function", "1.5"),
            "'1.5' is no value for 'function': it must be none, structure, or a whole number");
  EXPECT_EQ(refused("function", "9999999999"),
            "'9999999999' is no value for 'function': the number is out of range");
  EXPECT_EQ(refused("allow_custom_thickness", "maybe"),
            "'maybe' is no value for 'allow_custom_thickness': it must be yes or no");
  EXPECT_EQ(refused("thermal_asset.emissivity", "1 mm"),
            "'1 mm' is no value for 'thermal_asset.emissivity': it has no unit");
  EXPECT_EQ(refused("tags", "a; \"b"),
            "'a; \"b' is no value for 'tags': a quote is open, or stands beside a text");
  EXPECT_EQ(refused("tags", "a;;b"), "'a;;b' is no value for 'tags': a text in the list is empty");
  EXPECT_EQ(error_of([] { read_for_composition("type", "cheese"); }),
            "'cheese' is no value for 'type': it must be one of wall, floor, roof, other");
}

TEST(ValueFromText, tells_how_values_of_parts_are_written) {
  EXPECT_THAT(refused("shading_color", "1; 2"), HasSubstr("it must be a colour: red; green"));
  for (const char* text : {"#12345", "#1234567", "#gg0000", "#0x1234", "a; b; c; d"}) {
    EXPECT_THAT(refused("shading_color", text), HasSubstr("it must be a colour")) << text;
  }
  EXPECT_THAT(refused("cut_pattern", "Concrete"), HasSubstr("it must be a hatch: type; name"));
  EXPECT_THAT(refused("cut_pattern", "0; a; 1; 45; x"), HasSubstr("it must be a hatch"));
  EXPECT_THAT(refused("surface_pattern_alignment", "1"), HasSubstr("it must be a point"));
  EXPECT_THAT(error_of([] { read_for_composition("layers", "Brick"); }),
              HasSubstr("it must be layers: material | thickness | function"));
}

TEST(ValueFromText, keeps_the_parts_of_its_error) {
  try {
    read("conductivity", "much");
    FAIL() << "read";
  } catch (const kit::FieldError& error) {
    EXPECT_EQ(error.field(), "conductivity");
    EXPECT_EQ(error.value(), "much");
    EXPECT_EQ(error.allowed(), "it must be a number, in W/(m K) or with a unit");
  }
}

TEST(LibraryText, is_utf8_without_a_zero) {
  EXPECT_EQ(kit::library_text("Glätte").utf8(), "Glätte");
  EXPECT_EQ(error_of([] { kit::library_text("Gl\xE4tte"); }), "a text is not UTF-8");
  EXPECT_EQ(error_of([] { kit::library_text(std::string("a\0b", 3)); }),
            "a text has the character U+0000");
}

TEST(MeasureUnits, are_for_people) {
  EXPECT_EQ(kit::unit_text(kit::Measure::Length, Unit::Inches), "in");
  EXPECT_EQ(kit::unit_text(kit::Measure::Transmittance, Unit::Inches), "W/(m²K)");
  EXPECT_EQ(kit::unit_text(kit::Measure::None, Unit::Inches), "");
  EXPECT_EQ(kit::unit_factor("W/(m² K)", kit::Measure::Transmittance, Unit::Inches), 1.0);
  EXPECT_EQ(kit::unit_factor("mm", kit::Measure::Transmittance, Unit::Inches), std::nullopt);
}

TEST(ValueFromText, is_no_number_that_is_not_finite) {
  const double infinite = std::numeric_limits<double>::infinity();
  const double unknown = std::numeric_limits<double>::quiet_NaN();
  for (const double number : {infinite, -infinite, unknown}) {
    const std::string point = kit::value_text(Value(Point2d(1, number)));
    EXPECT_THAT(refused("surface_pattern_alignment", point), HasSubstr("a number must be finite"));
    const std::string list = kit::value_text(Value(Value::Numbers{number}));
    EXPECT_THAT(refused("thicknesses", list), HasSubstr("a number must be finite"));
    const std::string color = kit::value_text(Value(Color(number, 0, 0, 0)));
    EXPECT_THAT(refused("shading_color", color), HasSubstr("a number must be finite"));
  }
  EXPECT_THAT(refused("conductivity", kit::value_text(Value(infinite))),
              HasSubstr("a number must be finite"));
  EXPECT_EQ(read("conductivity", kit::value_text(Value(unknown))), Value());
}

}  // namespace
}  // namespace veldra_tests
