// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/all_reads.hpp"
#include "reliability/both_ways.hpp"
#include "reliability/fault_vfs.hpp"
#include "reliability/scene.hpp"
#include "reliability/soak.hpp"
#include "reliability/sweep.hpp"
#include "support/database.hpp"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <map>

namespace veldra_tests {

namespace {

struct Fixture {
  const char* name;
  const char* statements;
};

void expect_next_read_works(const veldra::Library& library, const ReadResult& result) {
  if (result.thrown == "") return;
  const Thrown next = thrown_by([&] { library.count<veldra::Layer>(); });
  EXPECT_TRUE(next == "" || next == "odb::sqlite::database_exception") << next;
}

void expect_documented_reads(const veldra::Library& library) {
  for (const ReadResult& result : read_everything(library)) {
    EXPECT_TRUE(is_documented_for_reading(result.thrown)) << result.read << ": " << result.thrown;
    expect_next_read_works(library, result);
  }
}

// Opens the file and reads all of it; false when it does not open.
bool read_file_as_library(const std::string& path, bool read_only) {
  SCOPED_TRACE(read_only ? "read-only" : "for writing");
  std::shared_ptr<veldra::Library> library;
  const Thrown thrown =
      thrown_by([&] { library = veldra::Library::open(path.c_str(), read_only); });
  EXPECT_TRUE(is_documented_for_opening(thrown)) << thrown;
  if (library == nullptr) return false;
  expect_documented_reads(*library);
  for (const BothWays& read : read_both_ways(*library)) {
    EXPECT_EQ(read.listed, read.one_by_one) << read.kind;
  }
  return true;
}

// What SQLite says of the file; it cannot check one whose collations it does not know.
std::string integrity(const std::string& path) {
  std::string found;
  const Thrown thrown =
      thrown_by([&] { found = PlainDatabase(path).value("PRAGMA integrity_check"); });
  return found + thrown.text;
}

void write_file_as_library(const std::string& path) {
  const std::string before = integrity(path);
  std::shared_ptr<veldra::Library> library;
  const Thrown thrown =
      thrown_by([&] { library = veldra::Library::open(FaultVfs::name_of(path).c_str(), false); });
  EXPECT_TRUE(is_documented_for_opening(thrown)) << thrown;
  if (library == nullptr) return;
  for (const ReadResult& result : write_everything(*library)) {
    EXPECT_TRUE(is_documented_for_writing(result.thrown)) << result.read << ": " << result.thrown;
  }
  const std::string after = integrity(path);
  EXPECT_TRUE(after == "'ok'" || after == before) << after;
}

void change_file(const std::string& path, const std::string& statements) {
  PlainDatabase(path).execute("PRAGMA synchronous=OFF;" + statements);
}

// What the columns forbid is allowed, so that the rows can be as bad as they like.
void loosen_schema(const std::string& path) {
  change_file(path,
              "PRAGMA writable_schema=ON;"
              "UPDATE sqlite_master SET sql=replace(sql, ' NOT NULL', '') WHERE type='table';");
}

// The bytes of a database without the counters that SQLite advances with every write.
std::string content(const std::string& path) {
  std::string bytes = read_file(path);
  bytes.replace(24, 4, 4, 0);
  bytes.replace(92, 8, 8, 0);
  return bytes;
}

// Returns whether the file opens.
bool expect_harmless(const Fixture& fixture, bool loosened) {
  SCOPED_TRACE(fixture.name);
  std::cout << fixture.name << std::endl;
  const Deadline deadline;
  Scene scene(Start::Current, "");
  if (loosened) loosen_schema(scene.path());
  const std::string sound = content(scene.path());
  change_file(scene.path(), fixture.statements);
  EXPECT_TRUE(content(scene.path()) != sound) << "the statements change nothing";

  const std::string before = read_file(scene.path());
  const bool opens = read_file_as_library(scene.path(), false);
  EXPECT_EQ(read_file_as_library(scene.path(), true), opens);
  EXPECT_TRUE(read_file(scene.path()) == before) << "reading has changed the file";
  if (opens) write_file_as_library(scene.path());
  return opens;
}

const Fixture rows[] = {
#include "reliability/hostile_rows.inc"
};

const Fixture schemas[] = {
#include "reliability/hostile_schemas.inc"
};

template <std::size_t number>
void expect_harmless(const Fixture (&fixtures)[number], bool loosened, const char* what) {
  const std::size_t opened =
      std::count_if(fixtures, fixtures + number,
                    [&](const Fixture& fixture) { return expect_harmless(fixture, loosened); });
  report_figure(what, number);
  report_figure("of which opened", opened);
  EXPECT_GT(2 * opened, number) << "hardly any file is read";
}

// Whatever the bad rows bring about comes from them alone.
TEST(HostileFile, that_forbids_nothing_is_a_library_like_any_other) {
  Scene scene(Start::Current, "");
  const std::string strict = catalogue(scene.path());
  loosen_schema(scene.path());
  EXPECT_NE(catalogue(scene.path()), strict);
  scene.open();
  for (const ReadResult& result : read_everything(*scene.library)) {
    EXPECT_EQ(result.thrown, "") << result.read;
  }
  std::map<std::string, const char*> refused = {
      {"save a composition again", "veldra::ObjectNotUnique"}, {"remove", "veldra::ObjectInUse"}};
  for (const ReadResult& result : write_everything(*scene.library)) {
    const char* expected = refused.count(result.read) != 0 ? refused[result.read] : "";
    EXPECT_EQ(result.thrown, expected) << result.read;
  }
}

TEST(HostileFile, with_bad_rows_does_no_harm) {
  expect_harmless(rows, true, "files with bad rows");
}

TEST(HostileFile, with_a_changed_schema_does_no_harm) {
  expect_harmless(schemas, false, "files with a changed schema");
}

TEST(HostileFile, with_a_very_long_text_is_read) {
  const unsigned mebibytes = soaking() ? 100 : 1;
  Scene scene(Start::Current, "");
  change_file(scene.path(), "UPDATE Material SET comments=replace(hex(zeroblob(" +
                                std::to_string(mebibytes) + " * 524288)), '0', 'x') WHERE id=1");
  scene.open();
  const auto material = scene.library->get<veldra::Material>(1u);
  ASSERT_TRUE(material);
  EXPECT_EQ(material->comments().utf8(), std::string(mebibytes * 1048576ul, 'x'));
  report_figure("MiB of one text", mebibytes);
}

TEST(HostileFile, without_ids_that_fit_takes_no_new_objects) {
  for (const char* last : {"4294967294", "9223372036854775807"}) {
    SCOPED_TRACE(last);
    Scene scene(Start::Current, "");
    change_file(scene.path(), std::string("UPDATE sqlite_sequence SET seq=") + last);
    const std::string before = scene.rows();
    scene.open();
    const auto tag = veldra::Tag::create("new");
    const Thrown thrown = thrown_by([&] { scene.library->save(tag); });
    EXPECT_EQ(thrown, "odb::sqlite::database_exception");
    EXPECT_EQ(thrown.code, SQLITE_FULL);
    EXPECT_EQ(thrown.text, "no id is left");
    EXPECT_EQ(tag->id(), 0u);
    EXPECT_EQ(scene.rows(), before);
  }
}

}  // namespace

}  // namespace veldra_tests
