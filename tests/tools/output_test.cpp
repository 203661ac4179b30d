// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/program.hpp"

#include "support/database.hpp"

#include <sys/stat.h>
#include <unistd.h>

namespace veldra_tests {
namespace {

struct stat status_of(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
  return status;
}

class Output : public ProgramTest {
 protected:
  void SetUp() override {
    const auto office = library("a.lib");
    const auto wall = veldra::Composition::create("Wall");
    wall->appendLayer({veldra::Material::create("Brick"), veldra::Material::Function::None, 115});
    office->save(wall);
    text_ = must({"export", "a.lib"}).out;
  }

  std::vector<std::string> command(const std::string& name, const std::string& output) const {
    if (name == "export") return {"export", "a.lib", "-o", output};
    return {"draw", "a.lib", "Wall", "-o", output};
  }

  /// Whoever asks, and however much, the file stays as it is.
  void expect_refusal(const std::string& output, const std::string& guarded) {
    const auto before = read(guarded);
    const auto names_before = names();
    for (const char* name : {"export", "draw"}) {
      for (const bool force : {false, true}) {
        auto arguments = command(name, output);
        if (force) arguments.push_back("--force");
        const auto run = veldra(arguments);
        EXPECT_EQ(run.status, 1) << name << " -o " << output;
        EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("'" + output + "'")));
        EXPECT_TRUE(read(guarded) == before) << name << " -o " << output;
      }
    }
    EXPECT_EQ(names(), names_before);
  }

  void link(const std::string& target, const std::string& name) const {
    ASSERT_EQ(::symlink(target.c_str(), path(name).c_str()), 0);
  }

  std::string text_;  ///< what an export gives
};

TEST_F(Output, is_never_the_library_that_is_read_whatever_leads_there) {
  ASSERT_EQ(::mkdir(path("folder").c_str(), 0755), 0);
  link("a.lib", "link");
  link("link", "link to the link");
  ASSERT_EQ(::link(path("a.lib").c_str(), path("hard link").c_str()), 0);
  for (const char* output : {"a.lib", "./a.lib", "folder/../a.lib", ".//a.lib", "link",
                             "link to the link", "hard link", "/proc/self/cwd/a.lib"}) {
    expect_refusal(output, "a.lib");
  }
  EXPECT_TRUE(S_ISLNK(status_of(path("link")).st_mode));
}

TEST_F(Output, is_never_another_library_or_database) {
  must({"create", "b.lib"});
  PlainDatabase(path("other")).execute("CREATE TABLE bookmarks (url TEXT)");
  link("b.lib", "link");
  expect_refusal("b.lib", "b.lib");
  expect_refusal("link", "b.lib");
  expect_refusal("other", "other");
}

TEST_F(Output, is_never_what_lies_beside_a_library) {
  for (const char* end : {"-journal", "-wal", "-shm"}) {
    const std::string name = std::string("b.lib") + end;
    write(name, "the only way back");
    link(name, std::string("link") + end + " hidden");
    expect_refusal(name, name);
    expect_refusal(std::string("link") + end + " hidden", name);
    ASSERT_EQ(::unlink(path(name).c_str()), 0);
    expect_refusal(name, "a.lib");
    EXPECT_FALSE(exists(name));
  }
}

TEST_F(Output, is_not_a_file_whose_content_nobody_may_look_at) {
  write("secret", "perhaps a library");
  ASSERT_EQ(::chmod(path("secret").c_str(), 0200), 0);
  if (!lose_privileges()) GTEST_SKIP() << "the superuser may read every file";
  const auto run = veldra({"export", "a.lib", "-o", "secret", "--force"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  ASSERT_EQ(::chmod(path("secret").c_str(), 0600), 0);
  EXPECT_EQ(read("secret"), "perhaps a library");
}

TEST_F(Output, replaces_another_file_only_where_that_is_wanted) {
  write("out", "work of a week");
  for (const char* name : {"export", "draw"}) {
    const auto run = veldra(command(name, "out"));
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("--force")));
    EXPECT_EQ(read("out"), "work of a week");
  }
  must({"export", "a.lib", "-o", "out", "--force"});
  EXPECT_EQ(read("out"), text_);
}

TEST_F(Output, leaves_alone_what_has_a_name_like_its_own) {
  must({"create", "b.lib"});
  write("out.unfinished", "mine");
  write(".veldra-abcdef.tmp", "left behind");
  link("b.lib", "more.unfinished");
  const auto before = read("b.lib");
  must({"export", "a.lib", "-o", "out"});
  must({"export", "a.lib", "-o", "more"});
  EXPECT_EQ(read("out.unfinished"), "mine");
  EXPECT_EQ(read(".veldra-abcdef.tmp"), "left behind");
  EXPECT_TRUE(read("b.lib") == before);
  EXPECT_THAT(names(), ElementsAre(".veldra-abcdef.tmp", "a.lib", "b.lib", "more",
                                   "more.unfinished", "out", "out.unfinished"));
}

TEST_F(Output, goes_through_links_to_their_target) {
  ASSERT_EQ(::mkdir(path("folder").c_str(), 0755), 0);
  write("folder/target", "old");
  link("folder/target", "link");
  link("folder/new", "dangling");
  must({"export", "a.lib", "-o", "link", "--force"});
  must({"export", "a.lib", "-o", "dangling"});
  EXPECT_TRUE(S_ISLNK(status_of(path("link")).st_mode));
  EXPECT_EQ(read("folder/target"), text_);
  EXPECT_EQ(read("folder/new"), text_);
}

TEST_F(Output, does_not_run_in_circles) {
  link("two", "one");
  link("one", "two");
  const auto run = veldra({"export", "a.lib", "-o", "one", "--force"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_TRUE(S_ISLNK(status_of(path("one")).st_mode));
}

TEST_F(Output, replaces_one_name_of_a_file_that_has_two) {
  write("one", "old");
  ASSERT_EQ(::link(path("one").c_str(), path("two").c_str()), 0);
  must({"export", "a.lib", "-o", "one", "--force"});
  EXPECT_EQ(read("one"), text_);
  EXPECT_EQ(read("two"), "old");
}

TEST_F(Output, has_the_rights_of_the_file_that_it_replaces) {
  write("out", "old");
  ASSERT_EQ(::chmod(path("out").c_str(), 0640), 0);
  if (::geteuid() == 0) {
    ASSERT_EQ(::chown(path("out").c_str(), 1234, 4321), 0);
  }
  const auto before = status_of(path("out"));
  must({"export", "a.lib", "-o", "out", "--force"});
  const auto after = status_of(path("out"));
  EXPECT_EQ(after.st_mode, before.st_mode);
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(after.st_gid, before.st_gid);
}

TEST_F(Output, has_the_usual_rights_where_it_is_new) {
  EXPECT_EQ(shell("umask 027; veldra export a.lib -o one; umask 0; veldra export a.lib -o two").err,
            "");
  EXPECT_EQ(status_of(path("one")).st_mode & 07777, 0640U);
  EXPECT_EQ(status_of(path("two")).st_mode & 07777, 0666U);
}

TEST_F(Output, is_no_folder) {
  ASSERT_EQ(::mkdir(path("folder").c_str(), 0755), 0);
  for (const char* output : {"folder", "folder/", ".", ".."}) {
    const auto run = veldra({"export", "a.lib", "-o", output, "--force"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("folder")));
  }
}

TEST_F(Output, leaves_nothing_behind_where_the_disk_is_full) {
  write("out", "old");
  const auto names_before = names();
  for (const char* name : {"new", "out"}) {
    const auto run = on_full_disk(1, std::string("export a.lib --force -o ") + name);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, AllOf(is_one_sentence(), HasSubstr("cannot be written"),
                               Not(HasSubstr("library"))));
  }
  EXPECT_EQ(read("out"), "old");
  EXPECT_EQ(names(), names_before);
}

TEST_F(Output, to_a_device_is_written_to_the_device) {
  must({"export", "a.lib", "-o", "/dev/null"});
  EXPECT_TRUE(S_ISCHR(status_of("/dev/null").st_mode));
  const auto run = veldra({"export", "a.lib", "-o", "/dev/full"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, AllOf(is_one_sentence(), Not(HasSubstr("library"))));
  EXPECT_TRUE(S_ISCHR(status_of("/dev/full").st_mode));
  link("/dev/null", "link");
  must({"export", "a.lib", "-o", "link"});
  EXPECT_TRUE(S_ISLNK(status_of(path("link")).st_mode));
}

TEST_F(Output, makes_no_file_among_the_devices) {
  const auto run = veldra({"export", "a.lib", "-o", "/dev/veldra-test"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, is_one_sentence());
  EXPECT_FALSE(file_exists("/dev/veldra-test"));
}

TEST_F(Output, to_a_descriptor_comes_after_what_was_written_there) {
  write("kept", "before\n");
  for (const char* name : {"/dev/stdout", "/proc/self/fd/1", "/dev/fd/1"}) {
    SCOPED_TRACE(name);
    const std::string output = std::string(" veldra export a.lib -o ") + name;
    EXPECT_EQ(shell("{ echo begin; " + output + "; echo end; } > out").err, "");
    EXPECT_EQ(read("out"), "begin\n" + text_ + "end\n");
    EXPECT_EQ(shell("cp kept out;" + output + " >> out").err, "");
    EXPECT_EQ(read("out"), "before\n" + text_);
    EXPECT_EQ(shell(output + " | cat").out, text_);
  }
  EXPECT_EQ(shell("veldra export a.lib -o /proc/self/fd/7 7> out").err, "");
  EXPECT_EQ(read("out"), text_);
}

TEST_F(Output, to_a_descriptor_is_no_library_either) {
  must({"create", "b.lib"});
  write("c.lib-journal", "the only way back");
  const auto before = read("b.lib");
  for (const char* command :
       {"veldra export a.lib -o /dev/stdout >> b.lib", "veldra export a.lib >> b.lib",
        "veldra list a.lib materials >> b.lib", "veldra remove a.lib compositions Wall 1<> b.lib",
        "veldra export a.lib --force -o /proc/self/fd/7 7>> b.lib",
        "veldra info a.lib >> c.lib-journal"}) {
    const auto run = shell(command);
    EXPECT_EQ(run.status, 1) << command;
    EXPECT_THAT(run.err, is_one_sentence()) << command;
  }
  EXPECT_TRUE(read("b.lib") == before);
  EXPECT_EQ(read("c.lib-journal"), "the only way back");
  EXPECT_EQ(count("a.lib", "compositions"), 1U);
}

TEST_F(Output, to_shared_memory_is_to_a_file) {
  if (::access("/dev/shm", W_OK | X_OK) != 0) GTEST_SKIP() << "there is none to be written";
  const std::string file = "/dev/shm/veldra-test-" + std::to_string(::getpid());
  must({"export", "a.lib", "-o", file});
  EXPECT_EQ(read_file(file), text_);
  EXPECT_EQ(veldra({"export", "a.lib", "-o", file}).status, 1);
  ASSERT_EQ(::unlink(file.c_str()), 0);
}

TEST_F(Output, to_a_pipe_lets_others_write_while_it_waits) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  const auto waiting = start({"export", "a.lib", "-o", "pipe"});
  EXPECT_FALSE(waiting->ends_within(std::chrono::milliseconds(500)));
  must({"remove", "a.lib", "compositions", "Wall"});
  const auto reader = start_shell("cat pipe");
  EXPECT_EQ(waiting->outcome().err, "");
  EXPECT_EQ(reader->outcome().out, text_);
  EXPECT_EQ(count("a.lib", "compositions"), 0U);
}

}  // namespace
}  // namespace veldra_tests
