// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/scene.hpp"
#include "reliability/soak.hpp"
#include "support/database.hpp"

#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <set>

namespace veldra_tests {

namespace {

constexpr unsigned objects_of_one = 4;  // three materials and a composition

const Arguments creating{"create", "new.lib", "--locale", "de_AT", "--region", "AT"};

std::string number(unsigned one) { return std::to_string(one); }

/// What one of several imports brings: nothing of it is anybody else's.
std::string source_of(unsigned one) {
  const std::string who = "von " + number(one);
  std::string materials, layers;
  for (unsigned i = 1; i != objects_of_one; ++i) {
    const std::string name = "\"Stoff " + number(i) + " " + who + "\"";
    const std::string comma = i == 1 ? "" : ", ";
    materials += comma + "{\"name\": " + name + ", \"type\": \"Stone\", \"tags\": [\"alle\"]}";
    layers += comma + "{\"material\": " + name + ", \"thickness\": 10}";
  }
  return "{\"format\": \"veldra\", \"version\": 1, \"library\": {\"unit\": \"mm\", \"locale\": "
         "\"de_AT\", \"region\": \"AT\"}, \"materials\": [" +
         materials + "], \"compositions\": [{\"name\": \"Wand " + who +
         "\", \"type\": \"wall\", \"layers\": [" + layers + "]}]}";
}

Arguments importing(const std::string& library, unsigned one) {
  return {"import", library, "source " + number(one) + ".json"};
}

bool contains(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// Programs in one folder that are started together.
class ProgramsTogether : public testing::Test {
 protected:
  ProgramsTogether() {
    for (unsigned one = 0; one != 4; ++one) {
      write_file(scene_.path() + "/source " + number(one) + ".json", source_of(one));
    }
    before_ = scene_.names();
  }

  std::vector<Ending> run_together(const std::vector<Arguments>& commands) {
    std::vector<std::unique_ptr<Process>> processes;
    for (const auto& command : commands) processes.push_back(scene_.start(command));
    std::vector<Ending> runs;
    for (const auto& process : processes) runs.push_back(process->wait());
    for (const Ending& run : runs) expect_sentence(run);
    return runs;
  }

  void expect_sentence(const Ending& run) const {
    EXPECT_THAT(run.status, AnyOf(0, 1)) << run.err << " signal " << run.signal;
    if (run.status == 1) {
      EXPECT_THAT(run.err, MatchesRegex("veldra: [^\n]+\n"));
    }
  }

  /// Which of the sources are in a library, each of them whole.
  std::vector<bool> imported(const std::string& library) const {
    const std::string path = scene_.path() + "/" + library;
    EXPECT_EQ(damage(path), "");
    PlainDatabase database(path);
    std::vector<bool> result;
    for (unsigned one = 0; one != 4; ++one) {
      const std::string who = "%von " + number(one) + "'";
      const unsigned found = static_cast<unsigned>(std::stoul(
          database.value("SELECT (SELECT count(*) FROM Material WHERE name LIKE '" + who +
                         ") + (SELECT count(*) FROM Composition WHERE name LIKE '" + who + ")")));
      EXPECT_THAT(found, AnyOf(0u, objects_of_one)) << "of " << one << " in part";
      result.push_back(found != 0);
    }
    return result;
  }

  /// What an export can give while the first two sources are imported: it is done before each of
  /// them, between them or after both.
  std::vector<std::string> exports_of_each_state() const {
    std::vector<std::string> exports;
    for (const std::vector<unsigned>& done :
         {std::vector<unsigned>{}, std::vector<unsigned>{0}, std::vector<unsigned>{1},
          std::vector<unsigned>{0, 1}}) {
      write_file(scene_.path() + "/both.lib", read_file(scene_.path() + "/site.lib"));
      for (const unsigned one : done) EXPECT_EQ(scene_.run(importing("both.lib", one)).status, 0);
      exports.push_back(scene_.run({"export", "both.lib"}).out);
    }
    return exports;
  }

  void expect_nothing_else(std::vector<std::string> made) const {
    made.insert(made.end(), before_.begin(), before_.end());
    EXPECT_THAT(scene_.names(), testing::UnorderedElementsAreArray(made));
  }

  const Scene scene_;
  std::vector<std::string> before_;
};

/// How many rounds there are, and how many programs take part in each.
unsigned rounds() { return number_or(4, 500); }
unsigned partners(unsigned round) { return 2 + round % 3; }

class OneNewFile : public ProgramsTogether {};
class OneFile : public ProgramsTogether {};

TEST_F(OneNewFile, is_made_by_one_of_those_who_create_it) {
  unsigned runs = 0;
  for (unsigned round = 0; round != rounds() && !HasFailure(); ++round) {
    const auto results = run_together(std::vector<Arguments>(partners(round), creating));
    runs += partners(round);
    std::vector<std::string> winners;
    for (const Ending& result : results) {
      if (result.status == 0) winners.push_back(result.out);
    }
    ASSERT_EQ(winners.size(), 1u);
    PlainDatabase made(scene_.path() + "/new.lib");
    EXPECT_EQ(damage(made), "");
    EXPECT_EQ(made.value("SELECT guid FROM Meta") + "\n",
              "'" + winners[0].substr(0, winners[0].size() - 1) + "'\n");
    EXPECT_EQ(made.value("SELECT locale FROM Meta"), "'de_AT'");
    expect_nothing_else({"new.lib"});
    ::unlink((scene_.path() + "/new.lib").c_str());
  }
  report_figure("program: creations of one new file", runs);
}

TEST_F(OneNewFile, takes_what_all_import_who_meet_there) {
  unsigned runs = 0;
  for (unsigned round = 0; round != rounds() && !HasFailure(); ++round) {
    std::vector<Arguments> commands;
    for (unsigned one = 0; one != partners(round); ++one) {
      commands.push_back(importing("new.lib", one));
    }
    const auto results = run_together(commands);
    runs += partners(round);
    const auto found = imported("new.lib");
    for (unsigned one = 0; one != partners(round); ++one) {
      EXPECT_EQ(results[one].status, 0) << results[one].err;
      EXPECT_EQ(found[one], results[one].status == 0);
    }
    expect_nothing_else({"new.lib"});
    ::unlink((scene_.path() + "/new.lib").c_str());
  }
  report_figure("program: imports into one new file", runs);
}

TEST_F(OneNewFile, is_not_touched_by_creating_where_an_import_was_first) {
  for (unsigned round = 0; round != rounds() && !HasFailure(); ++round) {
    const auto results = run_together({importing("new.lib", 0), creating, importing("new.lib", 1)});
    EXPECT_EQ(results[0].status, 0) << results[0].err;
    EXPECT_EQ(results[2].status, 0) << results[2].err;
    const auto found = imported("new.lib");
    EXPECT_TRUE(found[0] && found[1]);
    expect_nothing_else({"new.lib"});
    ::unlink((scene_.path() + "/new.lib").c_str());
  }
}

TEST_F(OneFile, keeps_what_each_import_reports_and_shows_one_state_to_readers) {
  const auto exports = exports_of_each_state();
  EXPECT_THAT(std::set<std::string>(exports.begin(), exports.end()), testing::SizeIs(4));
  unsigned runs = 0;
  for (unsigned round = 0; round != rounds() && !HasFailure(); ++round) {
    write_file(scene_.path() + "/both.lib", read_file(scene_.path() + "/site.lib"));
    const auto results = run_together({importing("both.lib", 0),
                                       {"export", "both.lib"},
                                       importing("both.lib", 1),
                                       {"export", "both.lib"}});
    runs += 4;
    // Nobody holds the library for as long as others wait for it.
    for (const Ending& result : results) EXPECT_EQ(result.status, 0) << result.err;
    const auto found = imported("both.lib");
    EXPECT_TRUE(found[0] && found[1]);
    for (const std::size_t reader : {1, 3}) {
      EXPECT_TRUE(contains(exports, results[reader].out)) << results[reader].out;
    }
    EXPECT_EQ(scene_.run({"export", "both.lib"}).out, exports.back());
    expect_nothing_else({"both.lib"});
  }
  report_figure("program: imports and exports of one file together", runs);
}

TEST_F(OneFile, loses_an_object_to_one_of_those_who_remove_it) {
  for (unsigned round = 0; round != rounds() && !HasFailure(); ++round) {
    write_file(scene_.path() + "/both.lib", read_file(scene_.path() + "/office.lib"));
    const auto results = run_together(
        std::vector<Arguments>(partners(round), {"remove", "both.lib", "materials", "Kork"}));
    EXPECT_EQ(std::count_if(results.begin(), results.end(),
                            [](const Ending& result) { return result.status == 0; }),
              1);
    EXPECT_EQ(damage(scene_.path() + "/both.lib"), "");
    expect_nothing_else({"both.lib"});
  }
}

TEST_F(OneFile, keeps_what_others_import_when_one_is_killed) {
  std::mt19937 random(number_from_environment("VELDRA_SEED", 1));
  unsigned killed = 0;
  for (unsigned round = 0; killed != rounds() && round != 20 * rounds() && !HasFailure(); ++round) {
    write_file(scene_.path() + "/both.lib", read_file(scene_.path() + "/site.lib"));
    const auto victim = scene_.start(importing("both.lib", 0));
    const auto other = scene_.start(importing("both.lib", 1));
    ::usleep(static_cast<useconds_t>(random() % 20000));
    victim->send(SIGKILL);
    if (victim->wait().signal == SIGKILL) ++killed;
    const Ending run = other->wait();
    expect_sentence(run);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(imported("both.lib")[1], run.status == 0);
    ::unlink((scene_.path() + "/both.lib-journal").c_str());
    expect_nothing_else({"both.lib"});
  }
  EXPECT_EQ(killed, rounds());
  report_figure("program: killed beside another one", killed);
}

}  // namespace

}  // namespace veldra_tests
