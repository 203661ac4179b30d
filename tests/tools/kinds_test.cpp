// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

namespace veldra_tests {
namespace {

/// A kind of objects as the program calls it, and as its tables of the file are called.
struct Kind {
  const char* singular;
  const char* plural;
  const char* table;
};

/// Two objects of a kind in a library, which differ in their names.
class EachKind : public ProgramTest, public testing::WithParamInterface<Kind> {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    for (const char* name : {"Ash", "Birch"}) {
      office->save(veldra::Material::create(name));
      office->save(veldra::Composition::create(name));
      office->save(veldra::MaterialType::create(name));
      office->save(veldra::Layer::create(name));
      office->save(veldra::Tag::create(name));
      office->save(veldra::CustomProperty::create(name, veldra::ObjectType::Material));
    }
  }

  static std::string singular() { return GetParam().singular; }
  static std::string plural() { return GetParam().plural; }
  static std::string object(const std::string& name) { return singular() + ":" + name; }
  static bool is_property() { return singular() == "property"; }
  static bool is_tag() { return singular() == "tag"; }
  static bool is_built() { return singular() == "material" || singular() == "composition"; }

  /// The names that a list gives.
  std::vector<std::string> listed(std::vector<std::string> more) const {
    more.insert(more.begin(), {"list", "a.lib", plural(), "--json"});
    std::vector<std::string> names;
    for (const auto& entry : must(more).json()) names.push_back(entry.at("name"));
    return names;
  }

  std::string id_of(const std::string& name) const {
    return must({"show", "a.lib", object(name), "--json"}).json().at("id").dump();
  }

  /// The sentence about `a.lib` with which a command ends that leaves everything as it was.
  std::string refusal(const std::vector<std::string>& arguments) const {
    const auto before = read("a.lib");
    const auto run = veldra(arguments);
    EXPECT_EQ(run.status, 1) << run.out;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, is_one_sentence());
    EXPECT_TRUE(read("a.lib") == before);
    const std::string begin = "veldra: 'a.lib': ";
    EXPECT_EQ(run.err.substr(0, begin.size()), begin);
    return run.err.substr(begin.size(), run.err.size() - begin.size() - 1);
  }
};

INSTANTIATE_TEST_SUITE_P(Kinds, EachKind,
                         testing::Values(Kind{"material", "materials", "Material"},
                                         Kind{"composition", "compositions", "Composition"},
                                         Kind{"type", "types", "MaterialType"},
                                         Kind{"layer", "layers", "Layer"},
                                         Kind{"property", "properties", "CustomProperty"},
                                         Kind{"tag", "tags", "Tag"}),
                         [](const auto& info) { return std::string(info.param.singular); });

TEST_P(EachKind, is_listed_as_a_table_with_ids_and_names) {
  const auto table = must({"list", "a.lib", plural()}).out;
  EXPECT_THAT(table, ContainsRegex("^ *id +name"));
  EXPECT_THAT(table, ContainsRegex("\n *" + id_of("Ash") + " +Ash"));
  EXPECT_THAT(table, ContainsRegex("\n *" + id_of("Birch") + " +Birch"));
}

TEST_P(EachKind, is_listed_by_pattern_filter_order_and_columns) {
  EXPECT_THAT(listed({"--search", "ash"}), ElementsAre("Ash"));
  EXPECT_THAT(listed({"--where", "name ~ IRC"}), ElementsAre("Birch"));
  EXPECT_THAT(listed({"--search", "%sh", "--where", "name ~ irc"}), IsEmpty());
  EXPECT_THAT(listed({"--where", "name = Ash or name = Birch", "--sort", "-name"}),
              ElementsAre("Birch", "Ash"));
  EXPECT_EQ(must({"list", "a.lib", plural(), "--search", "Ash", "--columns", "name", "--json"})
                .json()
                .dump(),
            R"([{"name":"Ash"}])");
}

TEST_P(EachKind, has_no_field_that_nobody_knows) {
  EXPECT_THAT(refusal({"list", "a.lib", plural(), "--columns", "nane"}),
              AllOf(HasSubstr("'nane'"), HasSubstr("name")));
  EXPECT_THAT(refusal({"list", "a.lib", plural(), "--sort", "nane"}), HasSubstr("'nane'"));
  EXPECT_THAT(refusal({"list", "a.lib", plural(), "--where", "nane = 1"}), HasSubstr("'nane'"));
}

TEST_P(EachKind, is_shown_by_name_by_id_and_behind_its_kind) {
  const auto id = id_of("Ash");
  const auto shown = must({"show", "a.lib", singular(), "Ash"}).out;
  EXPECT_THAT(shown, ContainsRegex("^id +" + id + "\nname +Ash\n"));
  EXPECT_EQ(must({"show", "a.lib", singular(), id}).out, shown);
  EXPECT_EQ(must({"show", "a.lib", singular(), "id:" + id}).out, shown);
  EXPECT_EQ(must({"show", "a.lib", singular(), "name:Ash"}).out, shown);
  EXPECT_EQ(must({"show", "a.lib", object("Ash")}).out, shown);
}

TEST_P(EachKind, of_which_one_is_called_by_the_id_of_another_is_not_guessed) {
  const auto id = id_of("Ash");
  std::vector<std::string> command{"new", "a.lib", singular(), id};
  if (is_property()) command.emplace_back("for=material");
  must(command);
  EXPECT_EQ(refusal({"show", "a.lib", singular(), id}),
            "'" + id + "' is the name of the " + singular() + " with the id " +
                id_of("name:" + id) + " and the id of the " + singular() +
                " 'Ash'; say name:" + id + " or id:" + id);
}

TEST_P(EachKind, that_is_not_there_is_answered_with_the_nearest) {
  EXPECT_THAT(refusal({"show", "a.lib", singular(), "Brich"}),
              AllOf(HasSubstr("there is no " + singular() + " 'Brich' in the library"),
                    HasSubstr("'Birch'")));
  EXPECT_THAT(refusal({"remove", "a.lib", plural(), "Brich"}),
              HasSubstr("there is no " + singular() + " 'Brich' in the library"));
}

TEST_P(EachKind, whose_names_cannot_be_read_is_answered_without_others) {
  const std::string table = GetParam().table;
  PlainDatabase(path("a.lib"))
      .execute("UPDATE " + table + " SET name = CAST(x'C3' AS TEXT) WHERE name = 'Ash'");
  // Properties are looked for among all, as several may have one name.
  EXPECT_EQ(refusal({"show", "a.lib", singular(), "Brich"}),
            is_property() ? "the library has a text that is not UTF-8"
                          : "there is no " + singular() + " 'Brich' in the library");
}

TEST_P(EachKind, is_removed_and_what_would_go_is_told_before) {
  EXPECT_THAT(must({"remove", "a.lib", plural(), "Ash", "--dry-run"}).out,
              ContainsRegex("Ash +would go"));
  const auto before = count("a.lib", plural());
  EXPECT_THAT(must({"remove", "a.lib", object("Ash")}).out, ContainsRegex("Ash +removed"));
  EXPECT_EQ(count("a.lib", plural()), before - 1);
}

TEST_P(EachKind, gets_another_name_unless_it_keeps_it_for_ever) {
  const auto id = id_of("Ash");
  if (is_tag()) {
    EXPECT_THAT(refusal({"rename", "a.lib", object("Ash"), "Oak"}),
                HasSubstr("a tag keeps its name"));
    EXPECT_THAT(refusal({"set", "a.lib", object("Ash"), "name=Oak"}),
                HasSubstr("once and for all"));
    return;
  }
  EXPECT_THAT(refusal({"rename", "a.lib", object("Ash"), "Birch"}),
              testing::AnyOf("the library has a " + singular() + " 'Birch' already",
                             HasSubstr("the library has another one of that name")));
  EXPECT_EQ(must({"rename", "a.lib", object("Ash"), "Oak"}).out,
            singular() + "  Ash  changed, as 'Oak'\n    name: Ash -> Oak\n");
  EXPECT_EQ(id_of("Oak"), id);
  must({"set", "a.lib", object("Oak"), "name=Elm"});
  EXPECT_EQ(id_of("Elm"), id);
  EXPECT_EQ(must({"rename", "a.lib", object("Elm"), "Elm"}).out,
            is_built() ? singular() + "  Elm  equal\n" : "There was nothing to do.\n");
}

TEST_P(EachKind, gives_no_name_to_several) {
  if (is_tag()) return;
  EXPECT_EQ(refusal({"set", "a.lib", object("Ash"), object("Birch"), "name=Oak"}),
            "'name' can be 'Oak' for one object only, and these are 2");
}

TEST_P(EachKind, of_which_several_are_changed_is_named_where_one_cannot_be) {
  EXPECT_EQ(refusal({"set", "a.lib", object("Ash"), object("Birch"), "name="}),
            singular() + " 'Ash': '' is no value for 'name': " +
                (is_tag() ? "it is given once and for all" : "it cannot be empty"));
}

TEST_P(EachKind, is_duplicated_and_tagged_if_it_has_values) {
  const std::string only = "only materials and compositions ";
  if (!is_built()) {
    EXPECT_EQ(refusal({"duplicate", "a.lib", object("Ash"), "Oak"}), only + "can be duplicated");
    EXPECT_THAT(refusal({"tag", "a.lib", object("Ash"), "--tag", "Birch"}),
                HasSubstr(only + "have tags"));
    EXPECT_THAT(refusal({"tag", "a.lib", object("Ash"), object("Birch"), "--tag", "Birch"}),
                HasSubstr(only + "have tags"));
    EXPECT_EQ(refusal({"set", "a.lib", object("Ash"), "--property", "Price=1"}),
              only + "have custom properties");
    return;
  }
  EXPECT_EQ(must({"duplicate", "a.lib", object("Ash"), "Oak"}).out, singular() + "  Oak  added\n");
  must({"tag", "a.lib", object("Ash"), object("Oak"), "--tag", "Birch"});
  EXPECT_THAT(listed({"--tag", "Birch"}), ElementsAre("Ash", "Oak"));
  must({"set", "a.lib", object("Ash"), "--property", "Price=1"});
  EXPECT_THAT(listed({"--where", "Price = 1"}), ElementsAre("Ash"));
}

TEST_P(EachKind, is_exported_alone_with_what_a_filter_selects) {
  const auto exported = must({"export", "a.lib", plural(), "--where", "name = Ash"}).out;
  EXPECT_THAT(exported, HasSubstr("Ash"));
  EXPECT_THAT(exported, Not(HasSubstr("Birch")));
}

TEST_P(EachKind, without_a_name_is_found) {
  const std::string table = GetParam().table;
  PlainDatabase(path("a.lib")).execute("UPDATE " + table + " SET name = '' WHERE name = 'Ash'");
  const auto run = veldra({"check", "a.lib"});
  EXPECT_EQ(run.status, 3) << run.err;
  EXPECT_THAT(run.out, ContainsRegex(singular() + " [0-9]+: .*name"));
}

TEST_P(EachKind, with_a_name_that_is_not_utf_8_is_found_and_the_others_are_read) {
  const std::string table = GetParam().table;
  PlainDatabase(path("a.lib"))
      .execute("UPDATE " + table + " SET name = CAST(x'C3' AS TEXT) WHERE name = 'Ash'");
  const auto run = veldra({"check", "a.lib"});
  EXPECT_EQ(run.status, 3) << run.err;
  EXPECT_THAT(run.out, ContainsRegex(singular() + " [0-9]+: the library has a text that is not "
                                                  "UTF-8"));
  EXPECT_THAT(run.out, Not(HasSubstr(singular() + " 'Birch': the library")));
}

}  // namespace
}  // namespace veldra_tests
