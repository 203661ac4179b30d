// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include <filesystem>
#include <set>

namespace veldra_tests {
namespace {

class ExampleCatalogue : public ProgramTest {
 protected:
  void SetUp() override {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(VELDRA_CATALOGUE)) {
      const auto extension = entry.path().extension();
      if (extension == ".json" || extension == ".idf" || extension == ".epJSON") {
        files.insert(entry.path().string());
        formats_.insert(extension.string());
      }
    }
    std::vector<std::string> arguments{"import", "a.lib", "--strict", "--json"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    must(arguments);
  }

  std::set<std::string> formats_;
};

TEST_F(ExampleCatalogue, has_what_it_promises) {
  EXPECT_EQ(formats_, (std::set<std::string>{".json", ".idf", ".epJSON"}));
  EXPECT_GE(count("a.lib", "materials"), 120U);
  EXPECT_GE(count("a.lib", "compositions"), 40U);
}

TEST_F(ExampleCatalogue, is_sound) { must({"check", "a.lib"}); }

TEST_F(ExampleCatalogue, every_material_has_thermal_values_and_every_one_differs) {
  std::set<std::string> values;
  for (const auto& material : must({"list", "a.lib", "materials", "--json"}).json()) {
    const auto& known = material["custom_values"];
    EXPECT_TRUE(known.contains("Thermal conductivity [W/(m K)]") ||
                known.contains("Thermal resistance [m2 K/W]") || known.contains("Gas type"))
        << material["name"];
    auto rest = material;
    for (const char* key : {"id", "code"}) rest.erase(key);
    EXPECT_TRUE(values.insert(rest.dump()).second) << material["name"];
  }
}

TEST_F(ExampleCatalogue, every_wall_floor_and_roof_has_a_plausible_transmittance) {
  for (const char* type : {"wall", "floor", "roof"}) {
    for (const auto& entry :
         must({"list", "a.lib", "compositions", "--type", type, "--json"}).json()) {
      const std::string name = entry["name"];
      const auto thermal = must({"show", "a.lib", "composition", name, "--json"}).json()["thermal"];
      ASSERT_TRUE(thermal["transmittance"].is_number()) << name;
      EXPECT_GT(thermal["transmittance"].get<double>(), 0.05) << name;
      EXPECT_LT(thermal["transmittance"].get<double>(), 4.0) << name;
    }
  }
}

TEST_F(ExampleCatalogue, gives_a_round_trip) {
  write("a.json", exported("a.lib"));
  must({"import", "b.lib", "a.json"});
  EXPECT_EQ(exported("b.lib"), read("a.json"));
}

TEST_F(ExampleCatalogue, is_shown_on_the_front_page_as_the_program_prints_it) {
  const std::string wall = "AW-05 Zweischalige Wand mit Klinker";
  const auto shown = must({"show", "a.lib", "composition", wall}).out;
  EXPECT_THAT(
      read_file(VELDRA_FRONT_PAGE),
      testing::HasSubstr("$ veldra show office.lib composition \"" + wall + "\"\n" + shown));
  EXPECT_EQ(must({"draw", "a.lib", wall}).out, read_file(VELDRA_FRONT_PICTURE));
}

TEST_F(ExampleCatalogue, is_filtered_on_the_front_page_as_the_program_prints_it) {
  const auto shown =
      must({"list", "a.lib", "compositions", "--where", "U < 0.18 and tag = außenwand", "--sort",
            "U", "--columns", "name,thickness,U"})
          .out;
  EXPECT_THAT(
      read_file(VELDRA_FRONT_PAGE),
      testing::HasSubstr("$ veldra list office.lib compositions --where 'U < 0.18 and tag = "
                         "außenwand' --sort U --columns name,thickness,U\n" +
                         shown));
}

/// The commands of the front page that stand below a title.
std::string commands_below(const std::string& title) {
  const std::string begin = "```sh\n";
  const auto page = read_file(VELDRA_FRONT_PAGE);
  const auto section = page.find("## " + title + "\n");
  const auto block = page.find(begin, section) + begin.size();
  return page.substr(block, page.find("```", block) - block);
}

TEST_F(ExampleCatalogue, is_what_a_librarian_begins_with_on_the_front_page) {
  const auto commands = commands_below("What a librarian does first");
  EXPECT_THAT(commands, HasSubstr("veldra draw"));
  const auto run = shell(
      "mkdir examples && ln -s '" VELDRA_CATALOGUE "' examples/catalogue && set -e\n" + commands);
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(run.out, HasSubstr("DA-12 Gründach extensiv                       520.5"));
  EXPECT_THAT(run.out, HasSubstr("manufacturer: nothing -> Huber"));
  for (const char* file : {"before.lib", "wall.svg", "site.lib", "office.json"}) {
    EXPECT_TRUE(exists(file)) << file;
  }
}

TEST_F(ExampleCatalogue, can_be_drawn_as_a_whole) {
  std::vector<std::string> arguments{"draw", "a.lib", "-o", "all.svg"};
  for (const auto& entry : must({"list", "a.lib", "compositions", "--json"}).json()) {
    arguments.push_back(entry["name"]);
  }
  must(arguments);
  EXPECT_TRUE(exists("all.svg"));
}

}  // namespace
}  // namespace veldra_tests
