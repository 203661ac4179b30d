// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"
#include "support/processes.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <set>

namespace veldra_tests {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds a_second(1000);

/// A library with a wall and two materials, and a source of which one object cannot be imported.
class Process : public ProgramTest {
 protected:
  void SetUp() override {
    write("a.idf",
          "Material:AirGap, Used, 0.1; Material:AirGap, Free, 0.1; Construction, Wall, Used;");
    write("b.idf", "Material:AirGap, New, 0.1; Construction, Broken, Nobody;");
    must({"import", "a.lib", "a.idf"});
    before_ = dump(path("a.lib"));
  }

  bool is_as_before() { return dump(path("a.lib")) == before_; }

  /// Which materials each composition of an export has that are not in it.
  static std::set<std::string> missing_materials(const nlohmann::json& exported) {
    std::set<std::string> there;
    for (const auto& material : exported["materials"]) there.insert(material["name"]);
    std::set<std::string> missing;
    for (const auto& composition : exported["compositions"]) {
      if (!composition.contains("layers")) continue;
      for (const auto& layer : composition["layers"]) {
        if (there.count(layer["material"]) == 0) missing.insert(layer["material"]);
      }
    }
    return missing;
  }

  std::string before_;
};

TEST_F(Process, does_the_same_whether_standard_error_can_be_written_or_not) {
  const auto told = shell("veldra import told.lib a.idf b.idf");
  const auto wrong = shell("veldra list a.lib nonsense").status;
  EXPECT_EQ(wrong, 2);
  for (const std::string silence : {"2>/dev/full", "2>&-"}) {
    const auto run = shell("veldra import silent.lib a.idf b.idf " + silence);
    EXPECT_EQ(run.status, told.status) << silence;
    EXPECT_EQ(run.out, told.out) << silence;
    EXPECT_EQ(exported("silent.lib"), exported("told.lib")) << silence;
    EXPECT_EQ(shell("veldra list a.lib nonsense " + silence).status, wrong) << silence;
    EXPECT_EQ(shell("veldra info missing.lib " + silence).status, 1) << silence;
    ASSERT_EQ(::unlink(path("silent.lib").c_str()), 0);
  }
}

TEST_F(Process, that_only_reads_fails_where_standard_output_cannot_be_written) {
  for (const std::string out : {"> /dev/full", ">&-", ">&- <&-"}) {
    for (const std::string command : {"list a.lib materials", "info a.lib", "export a.lib",
                                      "--help", "purge a.lib --dry-run tags"}) {
      const auto run = shell("veldra " + command + " " + out);
      EXPECT_EQ(run.status, 1) << command << out;
      EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("standard output"),
                                 Not(HasSubstr("the library"))));
    }
  }
}

TEST_F(Process, that_changed_something_says_that_this_is_done_where_it_cannot_report) {
  for (const std::string out : {"> /dev/full", ">&-"}) {
    for (const std::string command : {"create b.lib", "import c.lib a.idf", "import a.lib b.idf",
                                      "copy a.lib b.lib --all", "remove a.lib materials New",
                                      "export a.lib -o out --force --json", "purge c.lib types"}) {
      const auto run = shell("veldra " + command + " " + out);
      EXPECT_EQ(run.status, 3) << command << out;
      EXPECT_THAT(run.err, HasSubstr("what was asked for is done, but standard output")) << command;
    }
    EXPECT_EQ(count("b.lib", "compositions"), 1U);
    EXPECT_EQ(count("c.lib", "materials"), 2U);
    EXPECT_EQ(count("a.lib", "materials"), 2U);
    ASSERT_EQ(::unlink(path("b.lib").c_str()), 0);
    ASSERT_EQ(::unlink(path("c.lib").c_str()), 0);
  }
}

TEST_F(Process, that_has_nothing_to_print_needs_no_standard_output) {
  const auto run = shell("veldra export a.lib -o out > /dev/full");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(exists("out"));
}

TEST_F(Process, does_what_it_was_asked_for_though_nobody_reads_on) {
  const auto run = shell("{ veldra import b.lib a.idf b.idf; echo $? > status; } | true");
  EXPECT_EQ(read("status"), "3\n") << run.err;
  EXPECT_EQ(count("b.lib", "materials"), 3U);
  shell("{ veldra list a.lib materials; echo $? > status; } | true");
  EXPECT_EQ(read("status"), "1\n");
}

TEST_F(Process, never_gives_a_file_the_number_of_a_closed_stream) {
  const auto run = shell("veldra import b.lib a.idf <&- >&- 2>&-");
  EXPECT_EQ(run.status, 3);
  EXPECT_EQ(damage(path("b.lib")), "");
  EXPECT_EQ(exported("b.lib"), exported("a.lib"));
}

TEST_F(Process, lets_others_write_while_nobody_reads_what_it_says) {
  const auto office = library("a.lib");
  for (int i = 0; i < 1000; ++i) {
    const auto material = veldra::Material::create(("Material " + std::to_string(i)).c_str());
    material->description(std::string(200, 'x').c_str());
    office->save(material);
  }
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  // The pipe is open and takes a part of it; nobody reads until a writer has come and gone.
  const auto exporting =
      start_shell("exec 3<> pipe; veldra export a.lib > pipe; echo done > ended; exec sleep 60");
  EXPECT_FALSE(exporting->ends_within(milliseconds(1000)));
  const auto begin = std::chrono::steady_clock::now();
  must({"remove", "a.lib", "compositions", "Wall"});
  EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(4000));
  EXPECT_FALSE(exists("ended"));
  const auto reader = start_shell("exec cat pipe");
  EXPECT_TRUE(wait_until([&] { return exists("ended"); }));
  exporting->signal(SIGKILL);  // and with it goes what keeps the pipe open
  const auto text = reader->outcome().out;
  const auto exported = nlohmann::json::parse(text);
  EXPECT_EQ(exported["materials"].size(), 1002U);
  EXPECT_EQ(exported["compositions"].size(), 1U) << "as it was before the removal";
}

TEST_F(Process, exports_one_state_beside_a_writer) {
  const auto writer = start_shell(
      "exec 2> errors; i=0; while [ ! -e stop ]; do i=$((i+1));"
      "echo \"Material:AirGap, G$i, 0.1; Construction, W$i, G$i;\" > n.idf;"
      "veldra import a.lib n.idf > /dev/null; done");
  unsigned most = 0;
  for (int i = 0; i < 40; ++i) {
    const auto exported = must({"export", "a.lib"}).json();
    EXPECT_THAT(missing_materials(exported), IsEmpty());
    most = std::max(most, static_cast<unsigned>(exported["materials"].size()));
  }
  write("stop", "");
  writer->outcome();
  EXPECT_GT(most, 3U) << "nobody wrote";
}

/// Programs that are asked to stop.
class Stopping : public Process {
 protected:
  /// Ends with status 1 within a second, says so, and says what state things have.
  void expect_stop(Running& run, int signal, const std::string& state) {
    run.signal(signal);
    EXPECT_TRUE(run.ends_within(a_second));
    const auto outcome = run.outcome();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "veldra: interrupted; " + state + "\n");
    EXPECT_THAT(outcome.out, IsEmpty());
    for (const auto& name : names()) EXPECT_THAT(name, Not(HasSubstr(".veldra-")));
  }

  /// Waits until the program has been waiting for a while.
  static void let_begin(Running& run) { EXPECT_FALSE(run.ends_within(milliseconds(700))); }
};

class Interrupted : public Stopping, public testing::WithParamInterface<int> {};

TEST_P(Interrupted, while_a_library_that_others_hold_is_opened) {
  const LockingProcess other(path("a.lib"), "BEGIN EXCLUSIVE", 4500);
  const auto run = start({"list", "a.lib", "materials"});
  let_begin(*run);
  expect_stop(*run, GetParam(), "'a.lib' is as it was");
}

TEST_P(Interrupted, while_others_keep_a_change_waiting) {
  const LockingProcess other(path("a.lib"), "BEGIN IMMEDIATE", 4500);
  const auto run = start({"remove", "a.lib", "materials", "Free"});
  let_begin(*run);
  expect_stop(*run, GetParam(), "'a.lib' is as it was");
}

TEST_P(Interrupted, while_a_commit_waits_for_a_reader) {
  const LockingProcess other(path("a.lib"), "BEGIN; SELECT count(*) FROM Material", 4500);
  const auto run = start({"remove", "a.lib", "materials", "Free"});
  let_begin(*run);
  expect_stop(*run, GetParam(), "'a.lib' is as it was");
}

TEST_P(Interrupted, while_a_pipe_waits_for_a_reader) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  const auto run = start({"export", "a.lib", "-o", "pipe"});
  let_begin(*run);
  expect_stop(*run, GetParam(), "'a.lib' is as it was");
}

TEST_P(Interrupted, while_a_source_waits_for_a_writer) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  const auto run = start({"import", "new.lib", "pipe"});
  let_begin(*run);
  expect_stop(*run, GetParam(), "nothing was done");
  EXPECT_FALSE(exists("new.lib"));
}

INSTANTIATE_TEST_SUITE_P(BySignals, Interrupted,
                         testing::Values(SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGALRM));

/// A source whose import takes a while.
class StoppingImport : public Stopping {
 protected:
  void SetUp() override {
    Stopping::SetUp();
    std::string text;
    for (int i = 0; i < 15000; ++i) {
      text += "Material:AirGap, Gap " + std::to_string(i) + ", 0.1;\n";
    }
    write("big.idf", text);
  }
};

TEST_F(StoppingImport, into_a_new_library_leaves_nothing) {
  const auto run = start({"import", "new.lib", "big.idf"});
  ASSERT_TRUE(wait_until([&] { return names().front().find(".veldra-") == 0; }));
  expect_stop(*run, SIGINT, "no library was made");
  EXPECT_FALSE(exists("new.lib"));
}

TEST_F(StoppingImport, into_a_library_leaves_it_as_it_was) {
  const auto run = start({"import", "a.lib", "big.idf"});
  ASSERT_TRUE(wait_until([&] { return exists("a.lib-journal"); }));
  expect_stop(*run, SIGTERM, "'a.lib' is as it was");
  EXPECT_FALSE(exists("a.lib-journal"));
  EXPECT_TRUE(is_as_before());
}

TEST_F(Stopping, of_a_copy_names_both_libraries_whichever_is_being_opened) {
  must({"create", "b.lib"});
  for (const char* library : {"a.lib", "b.lib"}) {
    const LockingProcess other(path(library), "BEGIN EXCLUSIVE", 4500);
    const auto run = start({"copy", "a.lib", "b.lib", "--all"});
    let_begin(*run);
    expect_stop(*run, SIGINT, "'a.lib' and 'b.lib' are as they were");
  }
}

TEST_F(Stopping, of_an_import_does_not_wait_for_large_objects) {
  write("large.json", R"({"format": "veldra", "materials": [{"name": ")" +
                          std::string(20'000'000, 'x') + "\"}]}");
  const auto library_before = read("a.lib");
  for (const int wait : {500, 1000, 1500}) {
    // What comes before the library is changed takes a while; and it is not changed meanwhile.
    const LockingProcess other(path("a.lib"), "BEGIN IMMEDIATE", 9000);
    const auto run = start({"import", "a.lib", "large.json"});
    if (run->ends_within(milliseconds(wait))) break;
    run->signal(SIGINT);
    EXPECT_TRUE(run->ends_within(a_second)) << "after " << wait << " ms";
    const auto outcome = run->outcome();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("interrupted; "));
  }
  EXPECT_TRUE(read("a.lib") == library_before);
}

TEST_F(Process, that_is_done_says_so_when_it_is_asked_to_stop) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  write("many.json", [] {
    std::string text = R"({"format": "veldra", "version": 1, "materials": [)";
    for (int i = 0; i < 2000; ++i) {
      text += (i > 0 ? ", " : "") + (R"({"name": "Material )" + std::to_string(i) + R"("})");
    }
    return text + "]}";
  }());
  must({"import", "b.lib", "many.json"});
  // The pipe takes less than what there is to say.
  const auto run = start_shell("exec 3<> pipe; exec \"$p0\" copy b.lib a.lib --all --json > pipe");
  const auto copied = [&] { return count("a.lib", "materials") == 2002; };
  ASSERT_TRUE(wait_until(copied));
  EXPECT_FALSE(run->ends_within(milliseconds(300)));
  run->signal(SIGINT);
  EXPECT_TRUE(run->ends_within(a_second));
  const auto outcome = run->outcome();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, HasSubstr("what was asked for is done, but"));
}

TEST_F(Process, that_would_make_a_file_larger_than_is_allowed_says_so) {
  write("n.idf", "Material:AirGap, New, 0.1;");
  for (const std::string command :
       {"create b.lib", "import b.lib n.idf", "import a.lib n.idf", "copy a.lib c.lib --all",
        "remove a.lib materials Free", "purge a.lib materials"}) {
    must({"create", "c.lib"});
    const auto run = on_full_disk(1, command);
    EXPECT_EQ(run.status, 1) << command;
    EXPECT_THAT(run.err, AllOf(is_one_sentence(),
                               HasSubstr("': the file would get larger than is allowed\n")))
        << command;
    EXPECT_TRUE(is_as_before()) << command;
    EXPECT_EQ(count("c.lib", "materials"), 0U);
    ASSERT_EQ(::unlink(path("c.lib").c_str()), 0);
  }
  EXPECT_FALSE(exists("b.lib"));
}

TEST_F(Process, goes_on_where_its_starter_has_signals_ignored) {
  const LockingProcess other(path("a.lib"), "BEGIN EXCLUSIVE", 1500);
  const auto run = start_shell("trap '' HUP INT; exec \"$p0\" list a.lib materials");
  EXPECT_FALSE(run->ends_within(milliseconds(500)));
  run->signal(SIGHUP);
  run->signal(SIGINT);
  EXPECT_EQ(run->outcome().status, 0);
}

}  // namespace
}  // namespace veldra_tests
