// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

namespace veldra_tests {
namespace {

/// A library with a brick that a source has otherwise.
class Apply : public ProgramTest {
 protected:
  void SetUp() override {
    write("old.idf", "Material, Brick, Rough, 0.24, 1, 1800, 1000; Construction, Wall, Brick;");
    write("new.idf",
          "Material, Brick, Rough, 0.24, 0.8, 1800, 1000; Material, Wool, Rough, 0.1, 0.04, 1, 1;"
          "Construction, Wall, Brick, Wool;");
    must({"import", "a.lib", "old.idf", "--tag", "t"});
  }

  nlohmann::ordered_json plan(const std::string& file = "p.json") const {
    return nlohmann::ordered_json::parse(read(file));
  }

  /// Writes the plan of the import; it has clashes, about which the program tells.
  void make_plan() const {
    const auto run = veldra({"import", "a.lib", "new.idf", "--tag", "t", "--plan", "p.json"});
    ASSERT_EQ(run.status, 3) << run.err;
    EXPECT_THAT(run.out, HasSubstr("the plan in 'p.json' says, once all of it is decided."));
    ASSERT_TRUE(exists("p.json"));
  }

  void decide(const std::string& decision) const {
    auto json = plan();
    for (auto& entry : json["entries"]) {
      if (entry["decision"] == "undecided") entry["decision"] = decision;
    }
    write("p.json", json.dump(2));
  }

  std::string conductivity(const std::string& library, const std::string& name) const {
    const auto json = must({"show", library, "material", name, "--json"}).json();
    return json["quantities"]["conductivity"]["value"].dump();
  }

  void expect_refusal(const std::vector<std::string>& arguments, const std::string& sentence,
                      int status = 1) const {
    const auto before = read("a.lib");
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, status) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(sentence));
    if (status == 1) {
      EXPECT_THAT(run.err, is_one_sentence());
    }
    EXPECT_TRUE(read("a.lib") == before);
  }
};

TEST_F(Apply, tells_of_all_that_is_undecided_whatever_the_case_of_its_name) {
  write("case.idf",
        "Material, BRICK, Rough, 0.24, 0.5, 1800, 1000; Material, BRIK, Rough, 1, 1, 1, 1;");
  EXPECT_EQ(veldra({"import", "a.lib", "case.idf", "--plan", "q.json"}).status, 3);
  expect_refusal({"apply", "q.json"},
                 "the library has a material 'BRICK' already, written 'Brick', which differs");
}

TEST_F(Apply, does_what_the_plan_of_a_table_says) {
  must({"set", "a.lib", "material:Brick", "manufacturer=Smith"});
  must({"export", "a.lib", "-o", "t.csv"});
  auto table = read("t.csv");
  table.replace(table.find("Smith"), 5, "Jones");
  write("t.csv", table);
  const auto before = read("a.lib");
  must({"import", "a.lib", "t.csv", "--plan", "p.json"});
  EXPECT_TRUE(read("a.lib") == before);
  EXPECT_EQ(plan()["entries"][0]["state_of"], "Brick");
  EXPECT_THAT(must({"apply", "p.json"}).out, HasSubstr("manufacturer: Smith -> Jones"));
  EXPECT_THAT(must({"show", "a.lib", "material", "Brick"}).out, HasSubstr("Jones"));
  expect_refusal({"apply", "p.json"}, "an object has changed since the plan was made");
}

TEST_F(Apply, does_what_somebody_has_decided_in_the_plan_of_an_import) {
  const auto before = read("a.lib");
  make_plan();
  EXPECT_TRUE(read("a.lib") == before);
  decide("change");
  const auto run = must({"apply", "p.json"});
  EXPECT_EQ(run.out,
            "material     Brick  changed\n"
            "    custom_values.Thermal conductivity [W/(m K)]: 1 -> 0.8\n"
            "material     Wool   added\n"
            "composition  Wall   changed\n"
            "    layers: Brick | 240 | structure -> Brick | 240 | structure; Wool | 100 | none\n"
            "    last_core_layer: 1 -> 2\n");
  EXPECT_EQ(conductivity("a.lib", "Brick"), "0.8");
}

TEST_F(Apply, does_what_the_command_would_have_done_at_once) {
  must({"copy", "a.lib", "b.lib", "--all"});
  must({"import", "b.lib", "new.idf", "--tag", "t", "--on-conflict", "rename"});
  const auto run = must(
      {"import", "a.lib", "new.idf", "--tag", "t", "--on-conflict", "rename", "--plan", "p.json"});
  EXPECT_THAT(run.out, EndsWith("The library is as it was; 'veldra apply' does what the plan in "
                                "'p.json' says.\n"));
  must({"apply", "p.json"});
  EXPECT_EQ(exported("a.lib"), exported("b.lib"));
}

TEST_F(Apply, tells_of_a_plan_with_conflicts_as_a_dry_run_does) {
  const auto planned = veldra({"import", "a.lib", "new.idf", "--plan", "p.json"});
  const auto tried = veldra({"import", "a.lib", "new.idf", "--dry-run"});
  EXPECT_EQ(planned.status, 3) << "the plan is made, and something in it is to be decided";
  EXPECT_EQ(tried.status, 1) << "the import would fail";
  EXPECT_EQ(planned.err, tried.err);
}

TEST_F(Apply, does_the_plan_of_a_copy) {
  must({"import", "b.lib", "new.idf"});
  must({"copy", "b.lib", "a.lib", "material:Wool", "--plan", "p.json"});
  EXPECT_EQ(count("a.lib", "materials"), 1U);
  must({"apply", "p.json"});
  EXPECT_EQ(count("a.lib", "materials"), 2U);
}

TEST_F(Apply, needs_no_source) {
  make_plan();
  decide("keep");
  write("new.idf", "");
  must({"apply", "p.json"});
  EXPECT_EQ(conductivity("a.lib", "Brick"), "1.0");
}

TEST_F(Apply, finds_the_library_from_every_folder_and_takes_another_place_of_it) {
  must({"import", "a.lib", "new.idf", "--on-conflict", "use", "--plan", "p.json"});
  EXPECT_EQ(plan()["library"]["path"], path("a.lib"));
  EXPECT_EQ(shell("cd / && veldra apply " + path("p.json")).status, 0);
  EXPECT_EQ(count("a.lib", "materials"), 2U);
  must({"import", "c.lib", "old.idf", "--tag", "t"});
  const auto moved = shell("mv a.lib moved.lib && veldra apply p.json moved.lib");
  EXPECT_THAT(moved.err, HasSubstr("changed since the plan was made: material 'Wool'"));
  EXPECT_THAT(veldra({"apply", "p.json"}).err, HasSubstr("there is no such file"));
}

TEST_F(Apply, is_refused_by_another_library) {
  must({"import", "b.lib", "old.idf"});
  make_plan();
  decide("keep");
  expect_refusal({"apply", "p.json", "b.lib"}, "'b.lib': the plan is for another library");
}

TEST_F(Apply, is_refused_when_an_object_has_changed) {
  make_plan();
  decide("change");
  must({"set", "a.lib", "material:Brick", "cost=5"});
  must({"new", "a.lib", "material", "Wool"});
  expect_refusal({"apply", "p.json"},
                 "objects have changed since the plan was made: material 'Brick', material 'Wool'");
}

TEST_F(Apply, does_not_mind_that_others_have) {
  make_plan();
  decide("change");
  must({"new", "a.lib", "material", "Cork"});
  must({"apply", "p.json"});
  EXPECT_EQ(count("a.lib", "materials"), 3U);
}

TEST_F(Apply, of_a_plan_with_open_decisions_tells_them_all) {
  make_plan();
  const auto run = veldra({"apply", "p.json"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("the library has a material 'Brick' already, which differs"));
  EXPECT_THAT(run.err, HasSubstr("the library has a composition 'Wall' already, which differs"));
  EXPECT_THAT(run.err, EndsWith("2 conflicts are to be decided first; the decisions are in "
                                "'p.json'\n"));
}

TEST_F(Apply, names_file_and_object_of_a_decision_that_makes_no_sense) {
  make_plan();
  auto json = plan();
  json["entries"][1]["decision"] = "keep";
  write("p.json", json.dump(2));
  expect_refusal({"apply", "p.json"},
                 "material 'Wool': 'keep' makes no sense, as the library has none of that name");
}

TEST_F(Apply, tells_of_numbers_that_nobody_could_compute_with) {
  make_plan();
  decide("change");
  auto json = plan();
  const auto set_thicknesses = [&](nlohmann::ordered_json& object) {
    if (object.contains("thicknesses")) object["thicknesses"] = {-5};
  };
  for (auto& material : json["objects"]["materials"]) set_thicknesses(material);
  write("p.json", json.dump(2));
  const auto run = veldra({"apply", "p.json"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.err, HasSubstr("veldra: material 'Brick': a thickness is negative"));
  EXPECT_EQ(veldra({"check", "a.lib"}).status, 3);
}

TEST_F(Apply, refuses_what_is_no_plan) {
  expect_refusal({"apply", "new.idf"}, "'new.idf': this is no plan");
  expect_refusal({"apply", "a.lib"}, "'a.lib': this is no plan");
  expect_refusal({"apply", "no.json"}, "'no.json': there is no such file");
}

TEST_F(Apply, tries_and_keeps_backups_like_all_commands_that_change_a_library) {
  make_plan();
  decide("change");
  const auto before = exported("a.lib");
  const auto bytes = read("a.lib");
  EXPECT_THAT(must({"apply", "p.json", "--dry-run"}).out,
              EndsWith("Nothing was written, because this was a dry run.\n"));
  EXPECT_TRUE(read("a.lib") == bytes);
  const auto report = must({"apply", "p.json", "--backup", "kept.lib", "--json"}).json();
  EXPECT_EQ(report[0]["outcome"], "equal");
  EXPECT_NE(exported("a.lib"), before);
  EXPECT_EQ(exported("kept.lib"), before);
}

TEST_F(Apply, of_a_plan_that_is_done_already_is_refused) {
  make_plan();
  decide("change");
  must({"apply", "p.json"});
  expect_refusal({"apply", "p.json"}, "objects have changed since the plan was made");
}

class PlanOption : public Apply {};

TEST_F(PlanOption, writes_no_file_over_another_one_unless_that_is_wanted) {
  write("p.json", "notes");
  expect_refusal({"import", "a.lib", "new.idf", "--plan", "p.json"},
                 "'p.json': there is a file of that name already; --force replaces it");
  EXPECT_EQ(read("p.json"), "notes");
  veldra({"import", "a.lib", "new.idf", "--plan", "p.json", "--force"});
  EXPECT_EQ(plan()["format"], "veldra plan");
}

TEST_F(PlanOption, never_writes_over_a_source_or_a_library) {
  expect_refusal({"import", "a.lib", "new.idf", "--plan", "new.idf", "--force"},
                 "'new.idf': this is a source of the plan");
  expect_refusal({"import", "a.lib", "new.idf", "--plan", "a.lib", "--force"},
                 "'a.lib': this is the library that is read");
}

TEST_F(PlanOption, is_for_a_library_that_is_there) {
  const auto run = veldra({"import", "b.lib", "new.idf", "--plan", "p.json"});
  EXPECT_THAT(run.err, HasSubstr("'b.lib': there is no such file, and a plan is for a library that "
                                 "is there"));
  EXPECT_FALSE(exists("b.lib"));
  EXPECT_FALSE(exists("p.json"));
}

TEST_F(PlanOption, is_no_dry_run_and_not_for_standard_output) {
  expect_refusal({"import", "a.lib", "new.idf", "--plan", "p.json", "--dry-run"}, "--dry-run", 2);
  expect_refusal({"import", "a.lib", "new.idf", "--plan", "-"}, "give a file", 2);
  expect_refusal({"import", "a.lib", "new.idf", "--force"}, "--plan", 2);
}

TEST_F(PlanOption, writes_nothing_where_the_command_fails) {
  expect_refusal({"import", "a.lib", "a.lib", "--plan", "p.json"}, "this is a library");
  EXPECT_FALSE(exists("p.json"));
}

TEST_F(PlanOption, keeps_no_backup) {
  veldra({"import", "a.lib", "new.idf", "--plan", "p.json", "--backup", "kept.lib"});
  EXPECT_FALSE(exists("kept.lib"));
}

}  // namespace
}  // namespace veldra_tests
