// SPDX-License-Identifier: GPL-2.0-or-later
#include "program/judgement.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <set>

namespace veldra_tests {

namespace {

/// Sentences for people: the program's name first, one line each, nothing of what it is built from.
bool are_sentences(const std::string& text) {
  static const std::regex sentence("(veldra: [^\n]+\n)+");
  static const std::regex inside("odb|SQL|sqlite|what\\(\\)|exception|std::|basic_|bad_alloc");
  return std::regex_match(text, sentence) && !std::regex_search(text, inside);
}

bool is_one_sentence(const std::string& text) {
  return are_sentences(text) && text.find('\n') == text.size() - 1;
}

/// A file that cannot be opened for writing is read, and said to be read-only.
std::string without_access(const std::string& text) {
  static const std::regex access("Read-only +(yes|no)\n");
  return std::regex_replace(text, access, "");
}

bool is_temporary(const std::string& name) {
  static const std::regex form("\\.veldra-[A-Za-z0-9]{6}\\.tmp");
  return std::regex_match(name, form);
}

/// What somebody has edited, where only he can read it.
bool is_edited_text(const std::string& name) {
  static const std::regex form("temporary/veldra-[A-Za-z0-9]{6}/veldra\\.json");
  return std::regex_match(name, form);
}

/// What is said of it when it was not applied.
const std::regex& kept_sentence() {
  static const std::regex sentence(
      "veldra: what was edited is kept in '[^\n]*/(temporary/[^\n]*)'\n");
  return sentence;
}

/// What the program itself says of why it has failed. The library that writes workbooks prints
/// lines of its own when it cannot read what it has laid aside, and nothing turns them off.
std::string reason_told(const std::string& errors) {
  static const std::regex line_of_library("\\[ERROR\\][^\n]*\n");
  return std::regex_replace(std::regex_replace(errors, kept_sentence(), ""), line_of_library, "");
}

std::string last_name(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string text_of(const Contents& contents, const std::string& name) {
  const auto found = contents.find(name);
  return found == contents.end() ? "gone" : found->second;
}

std::string start_of(const std::string& text) { return text.substr(0, 300); }

std::set<std::string> names_in(std::initializer_list<const Contents*> all) {
  std::set<std::string> names;
  for (const Contents* contents : all) {
    for (const auto& [name, text] : *contents) names.insert(name);
  }
  return names;
}

/// Whose journal it is, by its name; empty if it is none.
std::string owner_of_journal(const std::string& name) {
  const std::string end = "-journal";
  const bool is_journal =
      name.size() > end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0;
  return is_journal ? name.substr(0, name.size() - end.size()) : "";
}

bool may_be_left(const Reference& reference, Leftovers leftovers, const std::string& name) {
  if (leftovers == Leftovers::None) return false;
  const std::string owner = owner_of_journal(name);
  if (is_library(owner) && reference.before.count(owner) != 0) return true;
  return leftovers == Leftovers::TemporaryFile &&
         (is_temporary(name) || is_temporary(owner) || is_edited_text(name));
}

void expect_allowed(const Reference& reference, Leftovers leftovers,
                    const std::vector<std::string>& left) {
  for (const auto& name : left) {
    EXPECT_TRUE(may_be_left(reference, leftovers, name)) << name << " is left";
  }
  EXPECT_LE(std::count_if(left.begin(), left.end(), is_temporary), 1)
      << testing::PrintToString(left);
}

State state_of(const Reference& reference, const Contents& found) {
  bool before = true;
  bool after = true;
  for (const auto& name : names_in({&reference.before, &reference.after})) {
    if (reference.keeps(name) || name == reference.command.backup) continue;
    before = before && text_of(found, name) == text_of(reference.before, name);
    after = after && text_of(found, name) == text_of(reference.after, name);
  }
  if (before && after) return State::Unchanging;
  if (before) return State::Before;
  return after ? State::After : State::Neither;
}

}  // namespace

Reference::Reference(const Command& given) : command(given) {
  const Scene scene(command.arguments);
  before = scene.contents();
  run = scene.run(command.arguments);
  after = scene.contents();
  EXPECT_EQ(run.status, command.status) << run.err;
  for (const auto& name : names_in({&before, &after})) {
    EXPECT_NE(keeps(name), name == command.writes || name == command.backup)
        << name << " of " << command.name;
  }
}

bool Reference::keeps(const std::string& name) const {
  return text_of(before, name) == text_of(after, name);
}

void PrintTo(State state, std::ostream* stream) {
  const char* const names[] = {"before", "after", "unchanging", "neither"};
  *stream << names[static_cast<int>(state)];
}

State expect_whole_files(const Reference& reference, const Scene& scene, Leftovers leftovers,
                         const std::string& excused) {
  const Contents found = scene.contents();
  std::vector<std::string> left;
  for (const auto& name : names_in({&reference.before, &reference.after, &found})) {
    const std::string before = text_of(reference.before, name);
    const std::string after = text_of(reference.after, name);
    if (before == "gone" && after == "gone") {
      const bool is_excused = name == excused || last_name(name) == excused;
      if (!is_excused) left.push_back(name);
      continue;
    }
    const std::string text = text_of(found, name);
    EXPECT_TRUE(text == before || text == after)
        << name << " is neither as before nor as after: " << start_of(text);
  }
  expect_allowed(reference, leftovers, left);
  const State state = state_of(reference, found);
  const std::string& backup = reference.command.backup;
  if (state == State::After && !backup.empty()) {
    EXPECT_EQ(text_of(found, backup), text_of(reference.after, backup)) << "changed, and no backup";
  }
  return state;
}

std::string kept_text(const Ending& run, const Scene& scene) {
  std::smatch found;
  if (!std::regex_search(run.err, found, kept_sentence())) return "";
  const std::string name = found[1];
  EXPECT_THAT(scene.names(), testing::Contains(name)) << run.err;
  return name;
}

void expect_true_status(const Reference& reference, const Ending& run, State state) {
  const std::string whole =
      run.err + (run.signal != 0 ? "signal " + std::to_string(run.signal) : "");
  const bool as_usual = run.status == reference.run.status;
  if (run.status == 1) {
    EXPECT_THAT(state, AnyOf(State::Before, State::Unchanging)) << "status 1, but done: " << whole;
    EXPECT_TRUE(is_one_sentence(reason_told(run.err))) << whole;
    // What could not be read is what was told then.
    if (reference.command.arguments.front() == "check") return;
    EXPECT_THAT(without_access(reference.run.out), StartsWith(without_access(run.out)))
        << "status 1, but something else was told";
    return;
  }
  if (run.status != 0 && run.status != 3) {
    ADD_FAILURE() << "status " << run.status << ": " << whole;
    return;
  }
  EXPECT_THAT(state, AnyOf(State::After, State::Unchanging))
      << "status " << run.status << ", but not done: " << whole;
  if (as_usual && run.err == reference.run.err) {
    EXPECT_EQ(without_access(run.out), without_access(reference.run.out))
        << "status " << run.status << ", but not told";
    return;
  }
  if (reference.command.arguments.front() == "check" && run.status == 3 && run.err.empty()) {
    EXPECT_NE(run.out, reference.run.out) << "findings, but not told";
    return;
  }
  // Done, but that could not be told.
  EXPECT_EQ(run.status, 3) << whole;
  ASSERT_THAT(run.err, StartsWith(reference.run.err));
  EXPECT_TRUE(are_sentences(run.err.substr(reference.run.err.size()))) << whole;
}

void expect_usable(const Reference& reference, const Scene& scene, State state) {
  if (state == State::After) {
    for (const auto& [name, text] : reference.after) {
      if (!is_library(name) || reference.keeps(name)) continue;
      const Ending look = scene.run({"check", name});
      EXPECT_EQ(look.status, 0) << look.out << look.err;
    }
    return;
  }
  // It is written before the library is changed, and a second time it would be in the way.
  if (!reference.command.backup.empty()) scene.remove(reference.command.backup);
  const Ending again = scene.run(reference.command.arguments);
  EXPECT_EQ(again.status, reference.run.status) << "when it is done again: " << again.err;
  EXPECT_EQ(again.out, reference.run.out) << "when it is done again";
  const State now = state_of(reference, scene.contents());
  EXPECT_THAT(now, AnyOf(State::After, State::Unchanging)) << "when it is done again";
}

}  // namespace veldra_tests
