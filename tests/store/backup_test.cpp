// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/file_state.hpp"
#include "support/library_test.hpp"
#include "support/processes.hpp"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string>

namespace veldra_tests {
namespace {

constexpr const char* database_exception = "odb::sqlite::database_exception";
constexpr const char* in_transaction = "odb::already_in_transaction";

class Backup : public LibraryTest {
 protected:
  Backup() {
    library->save(full_composition("Wall"));
    library->locale("de-CH");
  }

  void back_up() const { library->backup(copy.c_str()); }

  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const std::string name :
         {"walls.lib", "copy.lib", "walls.lib-journal", "copy.lib-journal"}) {
      if (file_exists(folder / name)) names.push_back(name);
    }
    return names;
  }

  const std::string copy = folder / "copy.lib";
};

TEST_F(Backup, has_all_rows_and_the_identity) {
  const FileState before(path);
  back_up();
  EXPECT_TRUE(FileState(path) == before);
  EXPECT_EQ(dump(copy), dump(path));
  EXPECT_EQ(damage(copy), "");
  const auto opened = Library::openExisting(copy.c_str(), false);
  EXPECT_EQ(opened->guid(), library->guid());
  EXPECT_EQ(opened->locale(), String("de-CH"));
  EXPECT_EQ(contents_of(*opened), contents_of(*library));
  EXPECT_THAT(files(), ElementsAre("walls.lib", "copy.lib"));
}

TEST_F(Backup, of_many_pages_is_whole) {
  execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 100000)"
      " INSERT INTO Tag (name) SELECT 'a tag of a long name ' || i FROM n");
  back_up();
  EXPECT_TRUE(dump(copy) == dump(path));
}

TEST_F(Backup, a_file_that_is_there_stays) {
  for (const std::string& bytes : {std::string(), std::string("notes")}) {
    write_file(copy, bytes);
    EXPECT_EQ(thrown_by([&] { back_up(); }), "veldra::FileExists");
    EXPECT_EQ(read_file(copy), bytes);
  }
  EXPECT_EQ(thrown_by([&] { library->backup(folder.path().c_str()); }), "veldra::FileExists");
}

TEST_F(Backup, is_never_written_over_the_library) {
  const std::string before = rows();
  ASSERT_EQ(::symlink(path.c_str(), (folder / "link.lib").c_str()), 0);
  ASSERT_EQ(::link(path.c_str(), (folder / "same.lib").c_str()), 0);
  for (const std::string& name : {path, folder / "link.lib", folder / "same.lib"}) {
    EXPECT_EQ(thrown_by([&] { library->backup(name.c_str()); }), "veldra::FileExists");
  }
  EXPECT_EQ(rows(), before);
}

TEST_F(Backup, tells_which_file_is_there) {
  write_file(copy, "notes");
  try {
    back_up();
    FAIL();
  } catch (const FileError& error) {
    EXPECT_EQ(error.filename(), String(copy.c_str()));
  }
}

TEST_F(Backup, needs_a_folder_and_a_name) {
  for (const char* name : {"", "unix://", ":memory:", "no such vfs://x.lib"}) {
    const Thrown thrown = thrown_by([&] { library->backup(name); });
    EXPECT_EQ(thrown, database_exception) << name;
  }
  const Thrown thrown = thrown_by([&] { library->backup((folder / "none/copy.lib").c_str()); });
  EXPECT_EQ(thrown, database_exception);
  EXPECT_THAT(thrown.text, HasSubstr("none/copy.lib"));
  EXPECT_EQ(thrown_by([&] {
              const unsigned short half[] = {0xD800, 0};
              library->backup(half);
            }),
            "utf8::invalid_utf16");
}

TEST_F(Backup, has_the_rights_of_access_of_the_library) {
  for (const mode_t mode : {0600U, 0640U, 0644U}) {
    ::unlink(copy.c_str());
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    back_up();
    struct stat status;
    ASSERT_EQ(::stat(copy.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, mode);
  }
}

TEST_F(Backup, may_go_through_a_vfs) {
  library->backup(("unix://" + copy).c_str());
  EXPECT_EQ(dump(copy), dump(path));
  EXPECT_EQ(thrown_by([&] { library->backup(("unix://" + copy).c_str()); }), "veldra::FileExists");
}

TEST_F(Backup, into_memory_is_refused) {
  const auto other = Library::create("memdb:///precious", Unit::Millimetres, "");
  other->save(Tag::create("precious"));
  for (const char* name : {"memdb:///precious", "memdb:///another"}) {
    EXPECT_EQ(thrown_by([&] { library->backup(name); }), database_exception) << name;
  }
  EXPECT_TRUE(other->get<Tag>("precious"));
}

TEST_F(Backup, of_a_library_in_memory) {
  const auto memory = Library::create(":memory:", Unit::Inches, "");
  memory->save(Tag::create("dry"));
  memory->backup(copy.c_str());
  EXPECT_TRUE(Library::openExisting(copy.c_str(), true)->get<Tag>("dry"));
}

TEST_F(Backup, of_a_library_that_can_only_be_read) {
  library.reset();
  open_read_only()->backup(copy.c_str());
  EXPECT_EQ(dump(copy), dump(path));
}

TEST_F(Backup, of_a_library_with_a_log) {
  PlainDatabase other(path);
  other.execute("PRAGMA journal_mode = WAL; INSERT INTO Tag (name) VALUES ('in the log')");
  back_up();
  EXPECT_TRUE(Library::openExisting(copy.c_str(), true)->get<Tag>("in the log"));
  EXPECT_EQ(damage(copy), "");
}

TEST_F(Backup, is_refused_while_the_handle_writes) {
  {
    Library::Transaction transaction(*library);
    library->save(Tag::create("not yet"));
    EXPECT_EQ(thrown_by([&] { back_up(); }), in_transaction);
    transaction.commit();
  }
  std::string thrown;
  reactor.on_saved = [&](Library&, const ObjectKey&) {
    thrown = thrown_by([&] { back_up(); }).type;
  };
  library->save(Tag::create("another"));
  EXPECT_EQ(thrown, in_transaction);
  EXPECT_THAT(files(), ElementsAre("walls.lib"));
}

TEST_F(Backup, is_of_the_state_of_a_snapshot) {
  execute("PRAGMA journal_mode = WAL");
  const Library::Snapshot snapshot(*library);
  execute("INSERT INTO Tag (name) VALUES ('later')");
  back_up();
  EXPECT_FALSE(Library::openExisting(copy.c_str(), true)->get<Tag>("later"));
}

TEST_F(Backup, waits_for_a_library_that_is_being_written) {
  const LockingProcess other(path, "BEGIN EXCLUSIVE; INSERT INTO Tag (name) VALUES ('new')", 300);
  back_up();
  EXPECT_TRUE(other.time_is_over());
  EXPECT_TRUE(Library::openExisting(copy.c_str(), true)->get<Tag>("new"));
}

TEST_F(Backup, of_a_library_that_stays_locked_is_given_up) {
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 60000);
  EXPECT_EQ(thrown_by([&] { back_up(); }), "odb::timeout");
  EXPECT_THAT(files(), ElementsAre("walls.lib"));
}

TEST_F(Backup, that_does_not_fit_leaves_nothing) {
  execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 50000)"
      " INSERT INTO Tag (name) SELECT 'a tag of a long name ' || i FROM n");
  library.reset();
  const std::string told = run_without_privileges([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{200000, 200000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    return thrown_by([&] { open_read_only()->backup(copy.c_str()); }).type;
  });
  EXPECT_EQ(told, database_exception);
  EXPECT_THAT(files(), ElementsAre("walls.lib")) << "a journal would be applied to a later file";
}

TEST_F(Backup, can_be_interrupted) {
  execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 200000)"
      " INSERT INTO Tag (name) SELECT 'a tag of a long name ' || i FROM n");
  library->for_each<Tag>([&](const std::shared_ptr<Tag>&) {
    library->interrupt();
    EXPECT_EQ(thrown_by([&] { back_up(); }), "veldra::Interrupted");
    return false;
  });
  EXPECT_THAT(files(), ElementsAre("walls.lib"));
}

TEST_F(Backup, two_at_once_give_one) {
  library.reset();
  const auto one_of_two = [&]() -> std::string {
    const Thrown thrown = thrown_by([&] { open_read_only()->backup(copy.c_str()); });
    return thrown.type;
  };
  const auto told = run_at_once({one_of_two, one_of_two});
  EXPECT_THAT(told, testing::UnorderedElementsAre("", "veldra::FileExists"));
  EXPECT_EQ(dump(copy), dump(path));
}

}  // namespace
}  // namespace veldra_tests
