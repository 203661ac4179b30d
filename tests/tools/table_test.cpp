// SPDX-License-Identifier: GPL-2.0-or-later
#include "table.hpp"

#include "text.hpp"
#include "tools/program.hpp"
#include "tools/terminal.hpp"

#include <sstream>

namespace veldra_tests {
namespace {

using veldra_tool::Align;
using veldra_tool::Table;

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

std::size_t widest(const std::vector<std::string>& lines) {
  std::size_t width = 0;
  for (const auto& line : lines) width = std::max(width, veldra_tool::display_width(line));
  return width;
}

Table example() {
  Table table(
      {{"id", Align::Right}, {"name", Align::Left, true}, {"total [mm]", Align::Right}, {"tags"}});
  table.add({"1", "Außenwand aus Hochlochziegeln mit Kerndämmung", "485", "massiv, zweischalig"});
  table.add({"22", "Dach", "120.5", "Dach"});
  return table;
}

TEST(FittedTable, shortens_the_widest_texts_and_no_number) {
  const auto lines = lines_of(example().text(50));
  EXPECT_EQ(widest(lines), 50U);
  EXPECT_THAT(lines[2], AllOf(HasSubstr("Außenwand a"), HasSubstr("…"), HasSubstr("485")));
  EXPECT_THAT(lines[3], AllOf(HasSubstr("Dach"), HasSubstr("120.5")));
}

TEST(FittedTable, shortens_names_last) {
  const auto lines = lines_of(example().text(75));
  EXPECT_EQ(widest(lines), 75U);
  EXPECT_THAT(lines[2], AllOf(HasSubstr("Außenwand aus Hochlochziegeln mit Kerndämmung "),
                              HasSubstr("massiv,"), HasSubstr("…")));
}

TEST(FittedTable, is_as_it_is_where_there_is_room) {
  EXPECT_EQ(example().text(200), example().text());
  EXPECT_EQ(example().text(0), example().text());
  EXPECT_THAT(example().text(), Not(HasSubstr("…")));
}

TEST(FittedTable, leaves_something_of_each_text) {
  const auto lines = lines_of(example().text(10));
  EXPECT_THAT(lines[2], AllOf(HasSubstr("Außenwa…"), HasSubstr("massiv,…")));
}

TEST(FittedTable, counts_columns_and_not_characters) {
  Table table({{"name"}});
  table.add({"木材木材木材木材木材木材"});
  EXPECT_LE(widest(lines_of(table.text(12))), 12U);
}

class TableOnTerminal : public ProgramTest {
 protected:
  void SetUp() override {
    if (!terminals_can_be_made()) GTEST_SKIP() << "there are no terminals here";
    const auto office = library("a.lib");
    const std::string name = "Hochlochziegel mit Dämmstofffüllung ";
    for (int i = 0; i < 3; ++i) {
      std::string full;
      for (int part = 0; part <= 2 * i + 1; ++part) full += name;
      const auto material = veldra::Material::create((full + std::to_string(i)).c_str());
      material->thicknesses(veldra::toModify) = {240, 365};
      office->save(material);
    }
  }

  std::vector<std::string> listed(unsigned short columns) const {
    TerminalRun run(path(""), {"list", "a.lib", "materials"}, columns);
    EXPECT_EQ(run.finish(), 0);
    return lines_of(run.seen());
  }
};

TEST_F(TableOnTerminal, fits_80_and_160_columns) {
  EXPECT_EQ(widest(listed(80)), 80U);
  EXPECT_EQ(widest(listed(160)), 160U);
}

TEST_F(TableOnTerminal, is_whole_where_no_width_is_known_and_in_pipes) {
  const auto whole = lines_of(must({"list", "a.lib", "materials"}).out);
  EXPECT_GT(widest(whole), 200U);
  EXPECT_EQ(listed(0), whole);
}

}  // namespace
}  // namespace veldra_tests
