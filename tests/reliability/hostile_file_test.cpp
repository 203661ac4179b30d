#include "reliability/all_reads.hpp"
#include "reliability/fault_vfs.hpp"
#include "reliability/scene.hpp"
#include "reliability/soak.hpp"
#include "reliability/sweep.hpp"
#include "support/database.hpp"

#include <gtest/gtest.h>
#include <sqlite3.h>

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

void expect_harmless(const Fixture& fixture, bool loosened) {
  SCOPED_TRACE(fixture.name);
  std::cout << fixture.name << std::endl;
  const Deadline deadline;
  Scene scene(Start::Current, "");
  if (loosened) loosen_schema(scene.path());
  change_file(scene.path(), fixture.statements);

  const std::string before = read_file(scene.path());
  const bool opens = read_file_as_library(scene.path(), false);
  EXPECT_EQ(read_file_as_library(scene.path(), true), opens);
  EXPECT_TRUE(read_file(scene.path()) == before) << "reading has changed the file";
  if (opens) write_file_as_library(scene.path());
}

const Fixture rows[] = {
#include "reliability/hostile_rows.inc"
};

const Fixture schemas[] = {
#include "reliability/hostile_schemas.inc"
};

TEST(HostileFile, with_bad_rows_does_no_harm) {
  for (const Fixture& fixture : rows) expect_harmless(fixture, true);
  report_figure("files with bad rows", std::size(rows));
}

TEST(HostileFile, with_a_changed_schema_does_no_harm) {
  for (const Fixture& fixture : schemas) expect_harmless(fixture, false);
  report_figure("files with a changed schema", std::size(schemas));
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
  Scene scene(Start::Current, "");
  change_file(scene.path(), "UPDATE sqlite_sequence SET seq=4294967294");
  const std::string before = scene.rows();
  scene.open();
  const auto tag = veldra::Tag::create("new");
  const Thrown thrown = thrown_by([&] { scene.library->save(tag); });
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.code, SQLITE_FULL);
  EXPECT_EQ(tag->id(), 0u);
  EXPECT_EQ(scene.rows(), before);
}

}  // namespace

}  // namespace veldra_tests
