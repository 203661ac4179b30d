// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/all_reads.hpp"
#include "reliability/scene.hpp"
#include "support/database.hpp"
#include "support/effort.hpp"
#include "support/thrown.hpp"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

namespace veldra_tests {

namespace {

struct Fixture {
  const char* name;
  const char* statements;
};

const Fixture rows[] = {
#include "reliability/hostile_rows.inc"
};

const Fixture schemas[] = {
#include "reliability/hostile_schemas.inc"
};

const char* const allow_everything =
    "PRAGMA writable_schema=ON;"
    "UPDATE sqlite_master SET sql=replace(sql, ' NOT NULL', '') WHERE type='table'";

/// A library that is changed again and again, each time beginning with the sound one.
class HostileCheck : public testing::Test {
 protected:
  void SetUp() override { sound_ = read_file(scene_.path()); }

  void make_sound() const { write_file(scene_.path(), sound_); }
  void change(const std::string& statements) const {
    PlainDatabase(scene_.path()).execute("PRAGMA synchronous=OFF;" + statements);
  }

  /// Whether opening or checking tells that something is wrong, which must not take long.
  bool is_told() const {
    std::vector<veldra::String> found;
    const Effort effort;
    const Thrown thrown =
        thrown_by([&] { veldra::Library::open(scene_.path().c_str(), true)->check(found); });
    EXPECT_TRUE(effort.is_below(5));
    EXPECT_TRUE(is_documented_for_opening(thrown)) << thrown;
    return !thrown.type.empty() || !found.empty();
  }

 private:
  Scene scene_{Start::Current, ""};
  std::string sound_;
};

// The schema differs, so that something is told of each.
TEST_F(HostileCheck, ends_soon_with_bad_rows) {
  for (const Fixture& fixture : rows) {
    SCOPED_TRACE(fixture.name);
    make_sound();
    change(allow_everything);
    change(fixture.statements);
    EXPECT_TRUE(is_told());
  }
}

TEST_F(HostileCheck, tells_of_all_changed_schemas_but_of_what_belongs_to_SQLite) {
  std::set<std::string> not_told;
  for (const Fixture& fixture : schemas) {
    SCOPED_TRACE(fixture.name);
    make_sound();
    change(fixture.statements);
    if (!is_told()) not_told.insert(fixture.name);
  }
  EXPECT_THAT(not_told, testing::UnorderedElementsAre(
                            "write-ahead log", "automatic vacuum", "pages of 512 bytes",
                            "pages of 65536 bytes", "user version", "schema format of the future"));
}

TEST_F(HostileCheck, finds_nothing_in_the_sound_library) { EXPECT_FALSE(is_told()); }

}  // namespace

}  // namespace veldra_tests
