// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/catalogues.hpp"
#include "support/file_state.hpp"
#include "support/library_test.hpp"
#include "support/processes.hpp"

#include <unistd.h>

#include <chrono>
#include <string>

namespace veldra_tests {
namespace {

constexpr const char* in_transaction = "odb::already_in_transaction";

class Restoring : public LibraryTest {
 protected:
  Restoring() {
    library->save(full_composition("Wall"));
    library->backup(copy.c_str());
    before = rows();
    library->save(full_composition("Floor"));
    library->remove<Composition>(library->get<Composition>("Wall")->id());
    library->region("Ostschweiz");
    reactor.forget();
  }

  void restore() const { library->restoreFrom(copy.c_str()); }

  /// Expects that restoring throws so and changes nothing.
  void expect_refused(const std::string& file, const char* exception, bool other_library = false) {
    const std::string rows_before = rows();
    EXPECT_EQ(thrown_by([&] { library->restoreFrom(file.c_str(), other_library); }), exception)
        << file;
    EXPECT_EQ(rows(), rows_before);
    EXPECT_EQ(library->region(), String("Ostschweiz"));
    EXPECT_THAT(reactor.calls(), IsEmpty());
  }

  const std::string copy = folder / "copy.lib";
  std::string before;
};

TEST_F(Restoring, brings_back_all_that_was) {
  const FileState source(copy);
  restore();
  EXPECT_TRUE(FileState(copy) == source);
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(damage(path), "");
  EXPECT_EQ(library->region(), String());
  EXPECT_TRUE(library->get<Composition>("Wall"));
  EXPECT_FALSE(library->get<Composition>("Floor"));
}

TEST_F(Restoring, the_handle_and_others_go_on) {
  const auto other = open();
  EXPECT_EQ(other->count<Composition>(), 1U);
  restore();
  EXPECT_TRUE(library->save(full_composition("Roof")));
  EXPECT_EQ(other->count<Composition>(), 2U);
  EXPECT_TRUE(other->save(Tag::create("from the other")));
  const auto tag = library->get<Tag>("Wall tag 1");
  EXPECT_EQ(thrown_by([&] { library->remove(tag); }), "veldra::ObjectInUse");
}

TEST_F(Restoring, the_reactor_is_told_of_all_kinds_once) {
  restore();
  EXPECT_EQ(reactor.changes(), "1345670");
  EXPECT_EQ(reactor.calls().size(), 7U);
}

TEST_F(Restoring, what_was_dirty_in_memory_stays_so) {
  const auto floor = library->get<Composition>("Floor");
  floor->description("changed");
  restore();
  EXPECT_TRUE(floor->isDirty());
  EXPECT_EQ(floor->description(), String("changed"));
}

TEST_F(Restoring, a_larger_library_shrinks_and_grows_again) {
  library->backup((folder / "small.lib").c_str());
  execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 100000)"
      " INSERT INTO Tag (name) SELECT 'a tag of a long name ' || i FROM n");
  library->backup((folder / "large.lib").c_str());
  library->restoreFrom((folder / "small.lib").c_str());
  EXPECT_TRUE(rows() == dump(folder / "small.lib"));
  library->restoreFrom((folder / "large.lib").c_str());
  EXPECT_TRUE(rows() == dump(folder / "large.lib"));
  EXPECT_EQ(damage(path), "");
}

TEST_F(Restoring, from_pages_of_another_size) {
  PlainDatabase(copy).execute("PRAGMA page_size = 1024; VACUUM");
  restore();
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(damage(path), "");
}

TEST_F(Restoring, another_library_is_refused_unless_it_is_meant) {
  const std::string other = folder / "other.lib";
  {
    const auto made = Library::create(other.c_str(), Unit::Inches, "");
    made->locale("en-US");
    made->save(Tag::create("from elsewhere"));
  }
  expect_refused(other, "veldra::OtherLibrary");
  library->restoreFrom(other.c_str(), true);
  EXPECT_EQ(rows(), dump(other));
  EXPECT_EQ(library->unit(), Unit::Inches);
  EXPECT_EQ(library->locale(), String("en-US"));
  EXPECT_EQ(library->guid(), Library::open(other.c_str(), true)->guid());
}

TEST_F(Restoring, tells_which_file_is_another_library) {
  const auto other = create("other.lib");
  try {
    library->restoreFrom(other->filename());
    FAIL();
  } catch (const FileError& error) {
    EXPECT_EQ(error.filename(), other->filename());
  }
}

TEST_F(Restoring, what_is_no_library_is_refused) {
  PlainDatabase(folder / "foreign.db").execute("CREATE TABLE t (a)");
  write_file(folder / "empty", "");
  write_file(folder / "text", std::string(5000, 'x'));
  expect_refused(folder / "foreign.db", "veldra::NotALibrary", true);
  expect_refused(folder / "empty", "veldra::NotALibrary", true);
  expect_refused(folder / "text", "odb::sqlite::database_exception", true);
  expect_refused(folder / "missing", "odb::sqlite::database_exception", true);
  expect_refused(folder.path(), "odb::sqlite::database_exception", true);
  expect_refused("", "odb::sqlite::database_exception", true);
  EXPECT_EQ(read_file(folder / "empty"), "");
  EXPECT_FALSE(file_exists(folder / "missing"));
}

TEST_F(Restoring, a_version_to_come_is_refused) {
  PlainDatabase(copy).execute("UPDATE schema_version SET version = 999999");
  expect_refused(copy, "odb::unknown_schema_version");
}

TEST_F(Restoring, a_file_that_was_cut_is_refused) {
  const std::string bytes = read_file(copy);
  write_file(copy, bytes.substr(0, bytes.size() - 2048));
  expect_refused(copy, "odb::sqlite::database_exception");
}

TEST_F(Restoring, a_damaged_file_is_refused) {
  PlainDatabase(copy).execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 20000)"
      " INSERT INTO Tag (name) SELECT 'a tag of a long name ' || i FROM n");
  std::string bytes = read_file(copy);
  bytes.replace(bytes.size() / 2, 20000, 20000, '\0');
  write_file(copy, bytes);
  expect_refused(copy, "odb::sqlite::database_exception");
}

TEST_F(Restoring, a_file_without_a_table_is_refused) {
  PlainDatabase(copy).execute("DROP TABLE Composition_layers");
  expect_refused(copy, "odb::sqlite::database_exception");
}

TEST_F(Restoring, texts_of_another_encoding_are_refused) {
  const std::string other = folder / "utf16.lib";
  PlainDatabase made(other);
  made.execute("PRAGMA encoding = 'UTF-16le'");
  made.execute(current_file_statements());
  const Thrown thrown = thrown_by([&] { library->restoreFrom(other.c_str(), true); });
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_THAT(thrown.text, HasSubstr("encoded otherwise"));
  EXPECT_TRUE(library->get<Composition>("Floor"));
}

TEST_F(Restoring, pages_of_another_size_do_not_fit_into_a_library_with_a_log) {
  PlainDatabase(copy).execute("PRAGMA page_size = 1024; VACUUM");
  execute("PRAGMA journal_mode = WAL");
  const Thrown thrown = thrown_by([&] { restore(); });
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_THAT(thrown.text, HasSubstr("another size"));
  EXPECT_TRUE(library->get<Composition>("Floor"));
}

TEST_F(Restoring, another_handle_does_not_write_back_what_the_library_was) {
  const auto other_handle = open();
  const std::string other = folder / "other.lib";
  const String guid = Library::create(other.c_str(), Unit::Inches, "")->guid();
  library->restoreFrom(other.c_str(), true);
  other_handle->region("Ostschweiz");
  EXPECT_EQ(value("SELECT guid || ' ' || unit || ' ' || region FROM Meta"),
            "'" + guid.utf8() + " 0 Ostschweiz'");
  EXPECT_EQ(thrown_by([&] { other_handle->restoreFrom(copy.c_str()); }), "veldra::OtherLibrary");
}

TEST_F(Restoring, an_older_version_becomes_the_current_one_and_its_file_stays) {
  for (const int version : {150201, 150301}) {
    const std::string old = folder / ("old" + std::to_string(version));
    make_old_file(old, version);
    fill_old_file(old, version);
    const FileState state(old);
    library->restoreFrom(old.c_str(), true);
    EXPECT_TRUE(FileState(old) == state);
    EXPECT_EQ(value("SELECT version FROM schema_version"), "150302");
    const auto migrated = folder / ("migrated" + std::to_string(version));
    write_file(migrated, read_file(old));
    const auto opened = Library::open(migrated.c_str(), false);
    EXPECT_EQ(rows(), dump(migrated));
    EXPECT_EQ(library->guid(), opened->guid());
  }
}

TEST_F(Restoring, is_refused_by_a_library_that_can_only_be_read) {
  const auto reader = open_read_only();
  EXPECT_EQ(thrown_by([&] { reader->restoreFrom(copy.c_str()); }), "veldra::LibraryReadOnly");
}

TEST_F(Restoring, is_refused_while_the_handle_reads_or_writes) {
  {
    const Library::Snapshot snapshot(*library);
    expect_refused(copy, in_transaction);
  }
  {
    const Library::Transaction transaction(*library);
    expect_refused(copy, in_transaction);
  }
  std::string thrown;
  reactor.on_saved = [&](Library&, const ObjectKey&) {
    thrown = thrown_by([&] { restore(); }).type;
  };
  library->save(Tag::create("another"));
  EXPECT_EQ(thrown, in_transaction);
}

TEST_F(Restoring, is_allowed_when_the_reactor_is_told_of_changes) {
  bool first = true;
  reactor.on_library_changed = [&](Library&) {
    if (first) {
      first = false;
      restore();
    }
  };
  library->save(Tag::create("another"));
  EXPECT_EQ(rows(), before);
}

TEST_F(Restoring, waits_for_others_and_gives_up) {
  {
    const LockingProcess other(path, "BEGIN; SELECT count(*) FROM Tag", 300);
    restore();
    EXPECT_EQ(rows(), before);
  }
  library->region("Ostschweiz");
  reactor.forget();
  const LockingProcess other(copy, "BEGIN EXCLUSIVE", 60000);
  expect_refused(copy, "odb::timeout");
}

// Not by waiting for itself.
TEST_F(Restoring, from_its_own_file_is_refused_under_any_name) {
  const std::string hard = folder / "hard.lib";
  const std::string symbolic = folder / "symbolic.lib";
  ASSERT_EQ(::link(path.c_str(), hard.c_str()), 0);
  ASSERT_EQ(::symlink(path.c_str(), symbolic.c_str()), 0);
  for (const std::string& name :
       {path, folder / "./walls.lib", hard, symbolic, "unix://" + path, "unix://" + hard}) {
    expect_refused(name, "veldra::SameFile");
    expect_refused(name, "veldra::SameFile", true);
  }
  EXPECT_TRUE(library->save(Tag::create("another")));
}

TEST_F(Restoring, from_its_own_file_is_refused_at_once_and_tells_which_it_is) {
  const auto start = std::chrono::steady_clock::now();
  try {
    library->restoreFrom(path.c_str());
    FAIL();
  } catch (const FileError& error) {
    EXPECT_EQ(error.filename(), String(path.c_str()));
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

// The statements of the lists are kept.
TEST_F(Restoring, lists_before_and_after_are_those_of_their_library) {
  const auto names = [this] {
    std::string names;
    for (const auto& tag : all_of<Tag>(*library)) names += tag->name().utf8() + ";";
    for (const auto& material : all_of<Material>(*library)) names += material->name().utf8() + ";";
    return names;
  };
  library->restoreFrom(copy.c_str());
  const std::string restored = names();
  for (const char* name : {"first", "second", "third"}) library->save(full_material(name));
  EXPECT_NE(names(), restored);
  library->restoreFrom(copy.c_str());
  EXPECT_EQ(names(), restored);
}

TEST_F(Restoring, goes_through_a_link_to_another_file) {
  const std::string link = folder / "link.lib";
  ASSERT_EQ(::symlink(copy.c_str(), link.c_str()), 0);
  library->restoreFrom(link.c_str());
  EXPECT_EQ(rows(), before);
}

TEST_F(Restoring, into_a_library_in_memory) {
  const auto memory = Library::create(":memory:", Unit::Millimetres, "");
  memory->restoreFrom(copy.c_str(), true);
  EXPECT_TRUE(memory->get<Composition>("Wall"));
  EXPECT_EQ(memory->guid(), library->guid());
}

TEST_F(Restoring, into_a_library_with_a_log) {
  execute("PRAGMA journal_mode = WAL");
  restore();
  EXPECT_EQ(rows(), before);
}

}  // namespace
}  // namespace veldra_tests
