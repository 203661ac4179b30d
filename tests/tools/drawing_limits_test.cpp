// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include <cmath>
#include <limits>
#include <regex>

namespace veldra_tests {
namespace {

constexpr std::size_t longest = 1'000'000;

const std::vector<const char*>& hatches() {
  static const std::vector<const char*> names{
      "Insulation", "Rigid insulation", "Concrete", "Masonry", "Light masonry", "Timber", "Board",
      "Plaster",    "Screed",           "Gravel",   "Earth",   "Glass",         "Stone",  "Tile",
      "Membrane",   "Vegetation",       "Lines"};
  return names;
}

/// Drawings of build-ups that no building has.
class DrawingLimits : public ProgramTest {
 protected:
  using Type = veldra::Composition::Type;

  void SetUp() override { office_ = library("a.lib"); }

  std::shared_ptr<veldra::Material> material(const std::string& name, const char* hatch = nullptr) {
    const auto result = veldra::Material::create(name.c_str());
    result->custom_value("Thermal conductivity [W/(m K)]", "0.5");
    if (!hatch) return result;
    veldra::Pattern pattern(0.01, 45, true);
    pattern.name = hatch;
    result->cut_pattern(pattern);
    return result;
  }

  void save(const std::string& name, Type type, const std::vector<double>& thicknesses,
            const char* hatch = nullptr) {
    const auto composition = veldra::Composition::create(name.c_str());
    const auto of = material(name, hatch);
    composition->type(type);
    for (const double thickness : thicknesses) {
      composition->appendLayer({of, veldra::Material::Function::None, thickness});
    }
    office_->save(composition);
  }

  std::string drawn(const std::string& name) { return must({"draw", "a.lib", name}).out; }

  std::string drawn(Type type, const std::vector<double>& thicknesses,
                    const char* hatch = nullptr) {
    const std::string name = "Strange " + std::to_string(++made_);
    save(name, type, thicknesses, hatch);
    return drawn(name);
  }

  /// One build-up for each hatch, which has its name; walls and floors in turn.
  void save_with_each_hatch(const std::vector<double>& thicknesses) {
    veldra::Library::Transaction transaction(*office_);
    bool wall = false;
    for (const char* hatch : hatches()) {
      wall = !wall;
      save(hatch, wall ? Type::Wall : Type::Floor, thicknesses, hatch);
    }
    transaction.commit();
  }

  /// The widths of the layers on paper.
  static std::vector<double> layer_widths(const std::string& svg) {
    const std::regex layer("<clipPath id=\"[^\"]*\"><rect width=\"([0-9.]+)\"");
    std::vector<double> widths;
    for (std::sregex_iterator match(svg.begin(), svg.end(), layer), end; match != end; ++match) {
      widths.push_back(std::stod((*match)[1]));
    }
    return widths;
  }

  std::shared_ptr<veldra::Library> office_;
  int made_ = 0;
};

/// No number that is none, and none in the notation of programs.
testing::Matcher<std::string> has_sensible_numbers() {
  return AllOf(Not(HasSubstr("inf\"")), Not(HasSubstr("nan\"")), Not(HasSubstr(">inf")),
               Not(HasSubstr("nan<")), Not(testing::ContainsRegex("[0-9]e[-+][0-9]")));
}

TEST_F(DrawingLimits, a_layer_of_a_million_metres_beside_one_of_an_atom_fits) {
  save_with_each_hatch({1e9, 1e-9, 100});
  for (const char* hatch : hatches()) {
    SCOPED_TRACE(hatch);
    const auto svg = drawn(hatch);
    EXPECT_LE(svg.size(), longest);
    EXPECT_THAT(svg, has_sensible_numbers());
    const auto widths = layer_widths(svg);
    ASSERT_EQ(widths.size(), 3U);
    EXPECT_GE(widths[0], 20);
    EXPECT_LE(widths[0] + widths[1] + widths[2], 100.01);
    EXPECT_GE(widths[1], 1);
  }
}

TEST_F(DrawingLimits, scales_go_on_in_steps_of_one_two_and_five) {
  EXPECT_THAT(drawn(Type::Wall, {1e5}), HasSubstr("scale 1:1000 "));
  EXPECT_THAT(drawn(Type::Wall, {1.1e5}), HasSubstr("scale 1:2000 "));
  EXPECT_THAT(drawn(Type::Wall, {4e5}), HasSubstr("scale 1:5000 "));
  EXPECT_THAT(drawn(Type::Wall, {9e5}), HasSubstr("scale 1:10000 "));
  EXPECT_THAT(drawn(Type::Wall, {1e9}), HasSubstr("scale 1:1·10⁷ "));
}

TEST_F(DrawingLimits, thicknesses_and_the_bar_are_told_in_few_digits) {
  const auto svg = drawn(Type::Wall, {1.5e9, 1e-9});
  EXPECT_THAT(svg, HasSubstr(">1.5·10⁹<"));
  EXPECT_THAT(svg, HasSubstr(">1·10⁻⁹<"));
  EXPECT_THAT(svg, HasSubstr(">5·10⁸ mm<"));  // 25 mm of paper, at 1 : 2·10⁷
}

TEST_F(DrawingLimits, numbers_at_the_end_of_what_there_is_do_no_harm) {
  constexpr double greatest = std::numeric_limits<double>::max();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const auto type : {Type::Wall, Type::Roof}) {
    const auto svg =
        drawn(type, {greatest, greatest, infinity, -infinity, 5e-324, std::nan(""), -5});
    EXPECT_LE(svg.size(), longest);
    EXPECT_THAT(svg, has_sensible_numbers());
    EXPECT_THAT(svg, HasSubstr("∞"));
  }
}

TEST_F(DrawingLimits, many_layers_are_drawn_in_their_room) {
  save_with_each_hatch(std::vector<double>(150, 10));
  for (const char* hatch : hatches()) {
    SCOPED_TRACE(hatch);
    const auto svg = drawn(hatch);
    EXPECT_LE(svg.size(), longest);
    double sum = 0;
    const auto widths = layer_widths(svg);
    for (const double width : widths) sum += width;
    EXPECT_EQ(widths.size(), 150U);
    EXPECT_LE(sum, 101);
  }
}

TEST_F(DrawingLimits, hatches_end_when_they_have_become_too_long) {
  const auto svg = drawn(Type::Wall, std::vector<double>(150, 10), "Insulation");
  EXPECT_THAT(svg, HasSubstr("Some layers are drawn without their hatch."));
  EXPECT_THAT(drawn(Type::Wall, {100, 100}, "Insulation"), Not(HasSubstr("without their hatch")));
}

TEST_F(DrawingLimits, more_layers_than_can_be_drawn_are_told_in_a_sentence) {
  for (const std::size_t count : {201U, 5000U}) {
    const auto svg = drawn(Type::Wall, std::vector<double>(count, 10), "Board");
    EXPECT_LE(svg.size(), longest);
    EXPECT_THAT(svg, HasSubstr("too many layers to be drawn"));
    EXPECT_THAT(svg, HasSubstr("Wall · " + std::to_string(count) + " layers"));
    EXPECT_TRUE(layer_widths(svg).empty());
  }
}

TEST_F(DrawingLimits, names_without_end_are_told_in_a_sentence) {
  const auto composition = veldra::Composition::create(std::string(longest, 'W').c_str());
  composition->description(std::string(longest, 'D').c_str());
  composition->appendLayer(
      {material(std::string(longest, 'M')), veldra::Material::Function::None, 100});
  office_->save(composition);
  must({"draw", "a.lib", "1", "-o", "a.svg"});
  // The document has the name as its title as well.
  EXPECT_LE(read("a.svg").size(), longest);
  EXPECT_THAT(read("a.svg"), HasSubstr("too long to be drawn"));
}

}  // namespace
}  // namespace veldra_tests
