// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/database.hpp"
#include "support/file_state.hpp"
#include "support/library_fixture.hpp"
#include "support/processes.hpp"
#include "support/thrown.hpp"

#include <sqlite3.h>

#include <chrono>
#include <functional>

namespace veldra_tests {
namespace {

double seconds_of(const std::function<void()>& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class FileSharing : public LibraryFixture {};

// A current file is not written by opening it.

TEST_F(FileSharing, opening_writes_nothing) {
  create_and_close();
  const FileState before(path);
  open();
  open_read_only();
  create();
  EXPECT_TRUE(before == FileState(path));
}

TEST_F(FileSharing, reading_writes_nothing) {
  create_and_close();
  const FileState before(path);
  const auto library = open();
  library->get<MaterialType>(1);
  library->count<veldra::Material>();
  EXPECT_TRUE(before == FileState(path));
}

// Another program may have made the file keep a log of what is written.

/// Writes 2,000 layers, most of whose pages are in the log then and not yet in the file.
void write_to_the_log(PlainDatabase& writer) {
  writer.execute(
      "PRAGMA journal_mode=WAL;"
      "WITH RECURSIVE n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n WHERE i < 2000) "
      "INSERT INTO Layer (name) SELECT 'Layer ' || i FROM n");
}

TEST_F(FileSharing, a_file_is_not_damaged_for_pages_that_are_in_its_log) {
  create_and_close();
  PlainDatabase writer(path);
  write_to_the_log(writer);
  EXPECT_EQ(open()->count<veldra::Layer>(), 2000u);
  EXPECT_EQ(open_read_only()->count<veldra::Layer>(), 2000u);
}

TEST_F(FileSharing, a_log_that_a_crash_has_left_is_read) {
  create_and_close();
  std::string file, log;
  {
    PlainDatabase writer(path);
    write_to_the_log(writer);
    file = read_file(path);
    log = read_file(path + "-wal");
  }
  write_file(path, file);
  write_file(path + "-wal", log);
  EXPECT_EQ(open()->count<veldra::Layer>(), 2000u);
}

// Several handles in one process.

TEST_F(FileSharing, handles_are_distinct) {
  const auto first = create();
  const auto second = open();
  EXPECT_NE(first, second);
  EXPECT_EQ(first->guid(), second->guid());
}

// Handles that share what SQLite caches of a file would wait for each other for ever.
TEST_F(FileSharing, handles_share_no_cache_even_where_the_host_has_it_so) {
  ASSERT_EQ(sqlite3_enable_shared_cache(1), SQLITE_OK);
  const auto first = create();
  const auto second = open();
  sqlite3_enable_shared_cache(0);
  EXPECT_THAT(open_files(folder.path()), ElementsAre("walls.lib", "walls.lib"));
}

TEST_F(FileSharing, a_handle_reads_what_another_one_wrote) {
  const auto first = create();
  const auto second = open();
  PlainDatabase(path).execute("INSERT INTO Tag (name) VALUES ('facade')");
  EXPECT_EQ(first->count<veldra::Tag>(), 1u);
  EXPECT_EQ(second->count<veldra::Tag>(), 1u);
}

TEST_F(FileSharing, handles_write_in_turn) {
  const auto first = create();
  const auto second = open();
  for (int i = 0; i != 5; ++i) {
    first->locale("de-CH");
    second->locale("fr-CH");
  }
  EXPECT_EQ(open()->locale().utf8(), "fr-CH");
  EXPECT_EQ(damage(path), "");
}

TEST_F(FileSharing, closing_one_handle_leaves_the_other) {
  auto first = create();
  const auto second = open();
  first.reset();
  second->locale("de-CH");
  EXPECT_EQ(open()->locale().utf8(), "de-CH");
}

// A file that another process holds.

TEST_F(FileSharing, opening_waits_for_a_file_that_is_held) {
  create_and_close();
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 600);
  EXPECT_GT(seconds_of([&] { EXPECT_EQ(open()->count<MaterialType>(), 13u); }), 0.3);
}

TEST_F(FileSharing, opening_for_reading_only_waits_for_a_file_that_is_held) {
  create_and_close();
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 600);
  EXPECT_GT(seconds_of([&] { EXPECT_TRUE(open_read_only()->readOnly()); }), 0.3);
}

TEST_F(FileSharing, reading_waits_for_a_file_that_is_held) {
  const auto library = create();
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 600);
  EXPECT_GT(seconds_of([&] { EXPECT_EQ(library->count<MaterialType>(), 13u); }), 0.3);
}

TEST_F(FileSharing, a_setter_waits_for_another_writer) {
  const auto library = create();
  const LockingProcess other(path, "BEGIN IMMEDIATE", 600);
  EXPECT_GT(seconds_of([&] { library->locale("de-CH"); }), 0.3);
  EXPECT_EQ(open()->locale().utf8(), "de-CH");
}

TEST_F(FileSharing, opening_and_reading_go_on_beside_a_writer_that_has_not_committed) {
  const auto library = create();
  const LockingProcess other(path, "BEGIN IMMEDIATE; INSERT INTO Tag (name) VALUES ('x')", 8000);
  EXPECT_LT(seconds_of([&] {
              EXPECT_EQ(library->count<veldra::Tag>(), 0u);
              EXPECT_EQ(open()->count<veldra::Tag>(), 0u);
              EXPECT_EQ(open_read_only()->count<veldra::Tag>(), 0u);
            }),
            4.0);
}

TEST_F(FileSharing, waiting_ends_after_five_seconds) {
  create_and_close();
  const FileState before(path);
  {
    const LockingProcess other(path, "BEGIN EXCLUSIVE", 20000);
    Thrown thrown;
    const double seconds = seconds_of([&] { thrown = thrown_by([&] { open(); }); });
    EXPECT_EQ(thrown.type, "odb::timeout");
    EXPECT_GT(seconds, 4.5);
    EXPECT_LT(seconds, 8.0);
    EXPECT_THAT(open_files(folder.path()), IsEmpty());
  }
  EXPECT_TRUE(before == FileState(path));
  EXPECT_EQ(open()->count<MaterialType>(), 13u);
}

TEST_F(FileSharing, a_setter_that_waits_in_vain_fails_for_an_unknown_reason) {
  const auto library = create();
  {
    const LockingProcess other(path, "BEGIN IMMEDIATE", 20000);
    EXPECT_EQ(thrown_by([&] { library->locale("de-CH"); }).type, "veldra::UnknownError");
  }
  EXPECT_EQ(library->locale().utf8(), "de-CH");
  EXPECT_TRUE(open()->locale().empty());
}

TEST_F(FileSharing, migrating_waits_for_another_writer) {
  make_old_file(path, 150301);
  const LockingProcess other(path, "BEGIN IMMEDIATE; INSERT INTO Tag (name) VALUES ('x')", 600);
  EXPECT_GT(seconds_of([&] { EXPECT_EQ(open()->count<veldra::Tag>(), 1u); }), 0.3);
  EXPECT_EQ(catalogue(path), migrated_catalogue(150301));
}

// The library that another process is making counts, and is not made again.
TEST_F(FileSharing, creating_looks_again_once_the_file_is_free) {
  write_file(path, "");
  const LockingProcess other(path, "BEGIN IMMEDIATE; " + current_file_statements(), 600);
  const auto library = create(veldra::Unit::Millimetres, "abc");
  EXPECT_EQ(library->guid().utf8(), "a0ee4c58-3c1d-4c07-9d0e-5f54c1a8f6b2");
  EXPECT_EQ(library->unit(), veldra::Unit::Inches);
  EXPECT_EQ(library->count<MaterialType>(), 0u);
}

// Several processes at the same moment.

class FileSharingAtOnce : public FileSharing {
 protected:
  static constexpr int rounds = 40;

  // A new path for each round.
  std::string path_of(int round) const { return folder / ("walls" + std::to_string(round)); }

  // The GUIDs that so many processes see after each did `call`.
  static std::vector<std::string> guids_of(
      int processes, const std::function<std::shared_ptr<Library>(int process)>& call) {
    std::vector<std::function<std::string()>> calls;
    for (int process = 0; process != processes; ++process) {
      calls.push_back([&call, process] {
        const auto library = call(process);
        return library->guid().utf8() + " " + std::to_string(library->count<MaterialType>());
      });
    }
    return run_at_once(calls);
  }

  static void expect_one_whole_library(const std::string& file,
                                       const std::vector<std::string>& guids) {
    const std::string guid = PlainDatabase(file).value("SELECT guid FROM Meta");
    EXPECT_THAT(guids, Each(guid.substr(1, 36) + " 13"));
    EXPECT_EQ(catalogue(file), current_catalogue());
    EXPECT_EQ(damage(file), "");
    EXPECT_EQ(PlainDatabase(file).value("SELECT count(*) FROM Meta"), "1");
    EXPECT_EQ(PlainDatabase(file).value("SELECT count(*) FROM MaterialType"), "13");
    EXPECT_FALSE(file_exists(file + "-journal"));
  }

  void create_at_once(int processes) const {
    for (int round = 0; round != rounds && !HasFailure(); ++round) {
      SCOPED_TRACE(round);
      const std::string file = path_of(round);
      expect_one_whole_library(file, guids_of(processes, [&](int process) {
                                 const std::string guid = "process " + std::to_string(process);
                                 return Library::create(file.c_str(), veldra::Unit::Inches,
                                                        guid.c_str());
                               }));
    }
  }
};

TEST_F(FileSharingAtOnce, two_processes_create_one_library) { create_at_once(2); }

TEST_F(FileSharingAtOnce, four_processes_create_one_library) { create_at_once(4); }

TEST_F(FileSharingAtOnce, four_processes_open_one_empty_file_in_every_way) {
  for (int round = 0; round != rounds && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    const std::string file = path_of(round);
    write_file(file, "");
    expect_one_whole_library(file, guids_of(4, [&](int process) {
                               return process == 0 ? Library::create(file.c_str(),
                                                                     veldra::Unit::Inches, "abc")
                                                   : Library::open(file.c_str(), process == 1);
                             }));
  }
}

TEST_F(FileSharingAtOnce, four_processes_migrate_one_library) {
  for (int round = 0; round != rounds && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    const int version = round % 2 == 0 ? 150201 : 150301;
    const std::string file = path_of(round);
    make_old_file(file, version);
    fill_old_file(file, version);
    const std::string before = dump(file);
    const std::vector<std::string> guids =
        guids_of(4, [&](int process) { return Library::open(file.c_str(), process == 0); });
    EXPECT_THAT(guids, Each("a0ee4c58-3c1d-4c07-9d0e-5f54c1a8f6b2 2"));
    EXPECT_EQ(catalogue(file), migrated_catalogue(version));
    EXPECT_EQ(dump(file), migrated_dump(before));
  }
}

TEST_F(FileSharingAtOnce, four_processes_write_in_turn) {
  create_and_close();
  const auto results = run_at_once(std::vector<std::function<std::string()>>(4, [&] {
    for (int i = 0; i != 20; ++i) open()->locale("de-CH");
    return std::string("done");
  }));
  EXPECT_THAT(results, Each("done"));
  EXPECT_EQ(open()->locale().utf8(), "de-CH");
  EXPECT_EQ(damage(path), "");
}

}  // namespace
}  // namespace veldra_tests
