// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace veldra_tests {
namespace {

using Table = std::vector<std::map<std::string, std::string>>;

std::vector<std::string> split(const std::string& line, char separator) {
  std::vector<std::string> parts(1);
  for (const char character : line) {
    if (character == separator) {
      parts.emplace_back();
    } else {
      parts.back() += character;
    }
  }
  return parts;
}

std::string folded(std::string text) {
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character + 32);
  }
  return text;
}

/// Real models, with what an independent reader found in them.
class RealData : public ProgramTest {
 protected:
  void SetUp() override {
    const char* folder = std::getenv("VELDRA_SHARED_DATA");
    if (folder == nullptr) GTEST_SKIP() << "VELDRA_SHARED_DATA names no folder";
    folder_ = folder;
    if (!file_exists(folder_ + "/expected/counts.tsv")) GTEST_SKIP() << "there is no data";
  }

  Table expected(const std::string& name) const {
    std::istringstream text(read_file(folder_ + "/expected/" + name));
    std::string line;
    std::getline(text, line);
    const auto titles = split(line, '\t');
    Table table;
    while (std::getline(text, line)) {
      auto cells = split(line, '\t');
      cells.resize(titles.size());
      std::map<std::string, std::string> row;
      for (std::size_t i = 0; i < titles.size(); ++i) row[titles[i]] = cells[i];
      table.push_back(row);
    }
    return table;
  }

  /// The rows of each file, or of files that are read together.
  std::map<std::string, Table> by_file(const std::string& name) const {
    std::map<std::string, Table> files;
    for (const auto& row : expected(name)) files[row.at("file")].push_back(row);
    return files;
  }

  nlohmann::json imported(const std::string& files, const std::string& library) const {
    std::vector<std::string> arguments{"import", library, "--json"};
    std::string rest = files;
    for (auto& character : rest) {
      if (character == '+') character = '\n';
    }
    for (const auto& file : split(rest, '\n')) {
      const bool whole = file.find('/') != std::string::npos;
      arguments.push_back(folder_ + (whole ? "/" : "/idf/") + file);
    }
    const auto run = veldra(arguments);
    EXPECT_TRUE(run.status == 0 || run.status == 3) << run.err;
    return run.json();
  }

  static std::string library_name(const std::string& files) {
    std::string name = files + ".lib";
    for (auto& character : name) {
      if (character == '/' || character == '+') character = '_';
    }
    return name;
  }

  std::string folder_;
};

TEST_F(RealData, counts_are_those_of_an_independent_reader) {
  for (const auto& [files, rows] : by_file("counts.tsv")) {
    SCOPED_TRACE(files);
    const auto report = imported(files, library_name(files));
    const auto sum = [&](const auto& value_of) {
      unsigned result = 0;
      for (const auto& source : report) result += value_of(source);
      return result;
    };
    for (const auto& row : rows) {
      const unsigned wanted = static_cast<unsigned>(std::stoul(row.at("count")));
      const auto& kind = row.at("kind");
      SCOPED_TRACE(kind + " " + row.at("class"));
      const unsigned got = sum([&](const nlohmann::json& source) -> unsigned {
        if (kind == "layers") return source["layers"];
        if (kind == "layers_without_thickness") return source["layers_without_thickness"];
        if (kind == "layers_unresolved") return source["references_not_found"];
        return source["read"].value(row.at("class"), 0U);
      });
      EXPECT_EQ(got, wanted);
    }
  }
}

TEST_F(RealData, materials_have_the_values_of_their_files) {
  const std::map<std::string, std::string> properties{
      {"conductivity", "Thermal conductivity [W/(m K)]"},
      {"density", "Density [kg/m3]"},
      {"specific_heat", "Specific heat [J/(kg K)]"},
      {"resistance", "Thermal resistance [m2 K/W]"}};
  unsigned compared = 0;
  for (const auto& [file, rows] : by_file("materials.tsv")) {
    SCOPED_TRACE(file);
    imported(file, library_name(file));
    std::map<std::string, nlohmann::json> materials;
    for (auto& entry : must({"list", library_name(file), "materials", "--json"}).json()) {
      materials[entry["name"]] = entry;
    }
    for (const auto& row : rows) {
      SCOPED_TRACE(row.at("name"));
      ASSERT_EQ(materials.count(row.at("name")), 1U);
      const auto& material = materials[row.at("name")];
      ++compared;
      if (row.at("thickness").empty()) {
        EXPECT_EQ(material.count("thicknesses"), 0U);
      } else {
        EXPECT_EQ(material["thicknesses"][0].get<double>(), std::stod(row.at("thickness")) * 1000);
      }
      for (const auto& [column, property] : properties) {
        const auto values = material.value("custom_values", nlohmann::json::object());
        if (row.at(column).empty()) {
          EXPECT_EQ(values.count(property), 0U);
        } else {
          ASSERT_EQ(values.count(property), 1U) << property;
          EXPECT_EQ(std::stod(values[property].get<std::string>()), std::stod(row.at(column)));
        }
      }
    }
  }
  EXPECT_GT(compared, 300U);
}

TEST_F(RealData, layers_are_those_of_their_files) {
  unsigned compared = 0;
  for (const auto& [files, rows] : by_file("layers.tsv")) {
    SCOPED_TRACE(files);
    imported(files, library_name(files));
    std::map<std::string, nlohmann::json> compositions;
    for (auto& entry : must({"list", library_name(files), "compositions", "--json"}).json()) {
      compositions[entry["name"]] = entry;
    }
    std::map<std::string, bool> complete;
    for (const auto& row : rows) {
      const auto known = complete.emplace(row.at("construction"), true).first;
      if (row.at("resolved_name").empty()) known->second = false;
    }
    for (const auto& row : rows) {
      const auto& name = row.at("construction");
      SCOPED_TRACE(name + ", layer " + row.at("layer"));
      ASSERT_EQ(compositions.count(name), complete[name] ? 1U : 0U);
      if (!complete[name]) continue;
      ++compared;
      const auto& layer = compositions[name]["layers"][std::stoul(row.at("layer")) - 1];
      EXPECT_EQ(folded(layer["material"]), folded(row.at("resolved_name")));
      const auto& thickness = row.at("thickness");
      EXPECT_EQ(layer["thickness"].get<double>(),
                thickness.empty() ? 0.0 : std::stod(thickness) * 1000);
    }
  }
  EXPECT_GT(compared, 600U);
}

TEST_F(RealData, a_second_import_of_everything_changes_nothing) {
  for (const auto& [files, rows] : by_file("counts.tsv")) {
    SCOPED_TRACE(files);
    imported(files, "all.lib");
    const auto before = exported("all.lib");
    for (const auto& source : imported(files, "all.lib")) {
      EXPECT_EQ(source["materials"]["added"], 0);
      EXPECT_EQ(source["compositions"]["added"], 0);
      EXPECT_EQ(source["materials"]["changed"], 0);
    }
    EXPECT_EQ(exported("all.lib"), before);
  }
}

TEST_F(RealData, a_fresh_import_is_sound) {
  for (const auto& [files, rows] : by_file("counts.tsv")) {
    SCOPED_TRACE(files);
    imported(files, library_name(files));
    must({"check", library_name(files)});
  }
}

TEST_F(RealData, exports_give_a_round_trip) {
  imported("idf/ASHRAE_2005_HOF_Materials.idf", "a.lib");
  write("a.json", exported("a.lib"));
  must({"import", "b.lib", "a.json"});
  EXPECT_EQ(exported("b.lib"), read("a.json"));
}

// Panes and gases stand in files of their own, beside the constructions that are made of them.
TEST_F(RealData, each_glazing_has_a_transmittance_that_glazings_have) {
  imported("WindowGlassMaterials.idf+WindowGasMaterials.idf+WindowConstructs.idf", "a.lib");
  const auto rows = must({"list", "a.lib", "compositions", "--columns", "name,U", "--json"}).json();
  EXPECT_EQ(rows.size(), 207U);
  for (const auto& row : rows) {
    ASSERT_TRUE(row["transmittance"].is_number()) << row["name"];
    EXPECT_GT(row["transmittance"].get<double>(), 0.4) << row["name"];
    EXPECT_LT(row["transmittance"].get<double>(), 6) << row["name"];
  }
}

}  // namespace
}  // namespace veldra_tests
