// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/new_library.hpp"
#include "text.hpp"
#include "tools/program.hpp"

#include "support/database.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <set>

namespace veldra_tests {
namespace {

mode_t rights_of(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

class Creating : public ProgramTest {
 protected:
  /// A source of materials of which no two are alike.
  void write_source(const std::string& file, const std::string& prefix, int count) const {
    std::string text;
    for (int i = 0; i < count; ++i) {
      text += "Material:AirGap, " + prefix + std::to_string(i) + ", 0.1;\n";
    }
    write(file, text);
  }
};

TEST_F(Creating, leaves_nothing_beside_the_library) {
  write_source("a.idf", "Gap", 3);
  must({"create", "a.lib", "--locale", "de_AT"});
  must({"import", "b.lib", "a.idf"});
  EXPECT_THAT(names(), ElementsAre("a.idf", "a.lib", "b.lib"));
}

TEST_F(Creating, refuses_the_names_of_what_libraries_keep_beside_them) {
  write_source("a.idf", "Gap", 3);
  must({"create", "a.lib"});
  for (const std::string suffix : {"-journal", "-wal", "-shm"}) {
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"create", "a.lib" + suffix},
          std::vector<std::string>{"import", "a.lib" + suffix, "a.idf"}}) {
      const auto run = veldra(command);
      EXPECT_EQ(run.status, 1);
      EXPECT_THAT(run.err, HasSubstr("the name of what a library keeps beside it"));
    }
  }
  EXPECT_THAT(names(), ElementsAre("a.idf", "a.lib"));
}

TEST_F(Creating, gives_the_library_the_usual_rights) {
  EXPECT_EQ(shell("umask 027; veldra create a.lib; umask 0; veldra create b.lib").err, "");
  EXPECT_EQ(rights_of(path("a.lib")), 0640U);
  EXPECT_EQ(rights_of(path("b.lib")), 0644U);
}

TEST_F(Creating, leaves_nothing_behind_where_the_disk_is_full) {
  write_source("a.idf", "Gap", 2000);
  // Not enough for an empty library, or for an empty one only.
  for (const int limit : {1, 20, 300}) {
    for (const char* command : {"create a.lib --locale de_AT", "import a.lib a.idf"}) {
      if (limit == 300 && std::string(command).find("create") == 0) continue;
      const auto run = on_full_disk(limit, command);
      EXPECT_EQ(run.status, 1) << command;
      EXPECT_THAT(run.err, is_one_sentence());
      EXPECT_THAT(names(), ElementsAre("a.idf"));
    }
  }
  must({"create", "a.lib"});
}

TEST_F(Creating, a_library_that_cannot_be_filled_leaves_nothing_behind) {
  write("a.json",
        R"({"format": "veldra", "version": 1, "materials": [{"name": "a", "code": "1"},
           {"name": "b", "code": "1"}]})");
  EXPECT_EQ(veldra({"import", "a.lib", "a.json"}).status, 1);
  EXPECT_THAT(names(), ElementsAre("a.json"));
}

TEST_F(Creating, is_refused_beside_a_journal_that_would_be_played_back) {
  write_source("a.idf", "Gap", 1);
  for (const char* end : {"-journal", "-wal"}) {
    const std::string companion = std::string("a.lib") + end;
    write(companion, "of another library");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"create", "a.lib"},
          std::vector<std::string>{"import", "a.lib", "a.idf"}}) {
      const auto run = veldra(arguments);
      EXPECT_EQ(run.status, 1);
      EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("'" + companion + "'")));
    }
    EXPECT_EQ(read(companion), "of another library");
    ASSERT_EQ(::unlink(path(companion).c_str()), 0);
    EXPECT_THAT(names(), ElementsAre("a.idf"));
  }
}

TEST_F(Creating, refuses_names_that_only_folders_have) {
  write_source("a.idf", "Gap", 1);
  must({"create", "a.lib"});
  for (const std::string file : {"x/", "a.lib/", "x/.", "."}) {
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"create", file}, std::vector<std::string>{"info", file},
          std::vector<std::string>{"import", file, "a.idf"},
          std::vector<std::string>{"import", file, "a.idf", "--dry-run"}}) {
      const auto run = veldra(command);
      EXPECT_EQ(run.status, 1);
      EXPECT_EQ(run.err, "veldra: '" + file + "': this is the name of a folder\n");
      EXPECT_EQ(run.out, "");
    }
  }
  EXPECT_THAT(names(), ElementsAre("a.idf", "a.lib"));
}

TEST_F(Creating, pretended_refuses_the_same_names) {
  write_source("a.idf", "Gap", 1);
  for (const char* file : {"a.lib-journal", "b.lib-wal"}) {
    const auto run = veldra({"import", file, "a.idf"});
    EXPECT_EQ(run.status, 1);
    const auto pretended = veldra({"import", file, "a.idf", "--dry-run"});
    EXPECT_EQ(pretended.status, 1);
    EXPECT_EQ(pretended.err, run.err);
  }
}

TEST_F(Creating, refuses_a_link_even_if_it_leads_nowhere) {
  ASSERT_EQ(::symlink("nowhere", path("a.lib").c_str()), 0);
  EXPECT_EQ(veldra({"create", "a.lib"}).status, 1);
  EXPECT_THAT(names(), ElementsAre("a.lib"));
}

/// One of them makes the library, in the unit of its source; the other has read its own in another
/// one by then.
TEST_F(Creating, of_two_imports_at_once_has_the_objects_of_both) {
  write_source("metric.idf", "Metric", 300);
  write("imperial.json", R"({"format": "veldra", "version": 1, "library": {"unit": "in"},
      "materials": [{"name": "Imperial", "thicknesses": [1]}]})");
  for (int round = 0; round < 8; ++round) {
    const auto one = start({"import", "a.lib", "metric.idf"});
    const auto other = start({"import", "a.lib", "imperial.json"});
    EXPECT_EQ(one->outcome().status, 0);
    EXPECT_EQ(other->outcome().status, 0);
    EXPECT_EQ(count("a.lib", "materials"), 301U);
    const auto unit = library("a.lib")->unit();
    const double inch = unit == veldra::Unit::Inches ? 1 : 25.4;
    const auto material = library("a.lib")->get<veldra::Material>(veldra::String("Imperial"));
    EXPECT_EQ(material->thicknesses(), std::set<double>{inch});
    ASSERT_EQ(::unlink(path("a.lib").c_str()), 0);
  }
}

TEST_F(Creating, of_several_one_makes_the_file_and_the_others_say_that_it_is_there) {
  for (int round = 0; round < 5; ++round) {
    std::vector<std::unique_ptr<Running>> runs;
    for (int i = 0; i < 4; ++i) runs.push_back(start({"create", "a.lib", "--region", "AT"}));
    std::string guid;
    for (const auto& run : runs) {
      const auto outcome = run->outcome();
      if (outcome.status == 0) {
        EXPECT_EQ(guid, "") << "two have made it";
        guid = outcome.out;
      } else {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.err,
                    AllOf(is_one_sentence(), HasSubstr("there is a file of that name already")));
      }
    }
    const auto info = must({"info", "a.lib", "--json"}).json();
    EXPECT_EQ(info["guid"].get<std::string>() + "\n", guid);
    EXPECT_EQ(info["region"], "AT");
    EXPECT_THAT(names(), ElementsAre("a.lib"));
    ASSERT_EQ(::unlink(path("a.lib").c_str()), 0);
  }
}

TEST_F(Creating, of_several_imports_all_go_into_the_library_that_one_makes) {
  for (int i = 0; i < 4; ++i) {
    write_source(std::to_string(i) + ".idf", "Gap " + std::to_string(i) + " ", 50);
  }
  for (int round = 0; round < 5; ++round) {
    std::vector<std::unique_ptr<Running>> runs;
    for (int i = 0; i < 4; ++i) {
      runs.push_back(start({"import", "a.lib", std::to_string(i) + ".idf"}));
    }
    for (const auto& run : runs) {
      const auto outcome = run->outcome();
      EXPECT_EQ(outcome.status, 0) << outcome.err;
      EXPECT_THAT(outcome.out, HasSubstr("materials     50 added\n"));
    }
    EXPECT_EQ(count("a.lib", "materials"), 200U);
    must({"check", "a.lib"});
    EXPECT_THAT(names(), ElementsAre("0.idf", "1.idf", "2.idf", "3.idf", "a.lib"));
    ASSERT_EQ(::unlink(path("a.lib").c_str()), 0);
  }
}

class NewLibraryTest : public Creating {
 protected:
  const std::string file_ = path("a.lib");
  veldra_tool::Host host_;
};

TEST_F(NewLibraryTest, is_not_seen_before_it_is_whole) {
  veldra_tool::NewLibrary made(file_, veldra::Unit::Inches, "");
  made.library()->region("AT");
  EXPECT_FALSE(exists("a.lib"));
  EXPECT_TRUE(made.put_into_place(host_));
  EXPECT_TRUE(host_.done);
  EXPECT_EQ(library("a.lib")->region(), veldra::String("AT"));
  EXPECT_THAT(names(), ElementsAre("a.lib"));
}

TEST_F(NewLibraryTest, never_takes_the_place_of_a_file_that_has_appeared) {
  {
    veldra_tool::NewLibrary made(file_, veldra::Unit::Inches, "");
    write("a.lib", "of somebody else");
    EXPECT_FALSE(made.put_into_place(host_));
    EXPECT_FALSE(host_.done);
  }
  EXPECT_EQ(read("a.lib"), "of somebody else");
  EXPECT_THAT(names(), ElementsAre("a.lib"));
}

TEST_F(NewLibraryTest, goes_with_its_journal_where_it_is_not_put_into_place) {
  write("a.lib", "of somebody else");
  {
    const veldra_tool::NewLibrary made(file_, veldra::Unit::Inches, "");
    const auto before = names();
    const auto temporary = before.front();
    EXPECT_THAT(temporary, testing::MatchesRegex("\\.veldra-......\\.tmp"));
    write(temporary + "-journal", "of the new library");
  }
  EXPECT_THAT(names(), ElementsAre("a.lib"));
}

}  // namespace
}  // namespace veldra_tests
