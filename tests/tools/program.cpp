#include "tools/program.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

extern char** environ;

namespace veldra_tests {

namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (auto& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

/// The streams of a child: nothing to read, and a file each to write.
class Streams {
 public:
  Streams(const std::string& out, const std::string& err) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    open(STDOUT_FILENO, out);
    open(STDERR_FILENO, err);
  }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;
  ~Streams() { posix_spawn_file_actions_destroy(&actions_); }

  void change_folder(const std::string& folder) {
    posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
  }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  void open(int descriptor, const std::string& file) {
    posix_spawn_file_actions_addopen(&actions_, descriptor, file.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
  }

  posix_spawn_file_actions_t actions_;
};

}  // namespace

Outcome ProgramTest::veldra(const std::vector<std::string>& arguments) const {
  const TemporaryFolder outputs;
  Streams streams(outputs / "out", outputs / "err");
  streams.change_folder(folder_.path());
  std::vector<std::string> texts = runner_;
  texts.push_back(VELDRA_PROGRAM);
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  const std::string program = texts.front();
  pid_t child = 0;
  const int error =
      posix_spawn(&child, program.c_str(), streams.get(), nullptr, pointers(texts).data(), environ);
  if (error != 0) throw std::runtime_error(std::strerror(error));
  int status = 0;
  waitpid(child, &status, 0);
  Outcome run;
  if (WIFEXITED(status)) run.status = WEXITSTATUS(status);
  run.out = read_file(outputs / "out");
  run.err = read_file(outputs / "err");
  return run;
}

Outcome ProgramTest::must(const std::vector<std::string>& arguments) const {
  auto run = veldra(arguments);
  EXPECT_EQ(run.status, 0) << run.err;
  return run;
}

void ProgramTest::write(const std::string& file, const std::string& text) const {
  write_file(path(file), text);
}

std::shared_ptr<veldra::Library> ProgramTest::library(const std::string& file) const {
  return veldra::Library::create(path(file).c_str(), veldra::Unit::Millimetres, "");
}

unsigned ProgramTest::count(const std::string& file, const std::string& kind) const {
  return must({"info", file, "--json"}).json()["counts"][kind].get<unsigned>();
}

bool ProgramTest::lose_privileges() {
  const std::string runner = "/usr/bin/setpriv";
  if (::geteuid() != 0) return true;
  if (!file_exists(runner)) return false;
  const std::string privileges = "-dac_override,-dac_read_search";
  runner_ = {runner, "--inh-caps=" + privileges, "--bounding-set=" + privileges};
  return true;
}

testing::Matcher<std::string> is_one_sentence() {
  using testing::AllOf;
  using testing::HasSubstr;
  using testing::MatchesRegex;
  using testing::Not;
  return AllOf(MatchesRegex("veldra: [^\n]+\n"), Not(HasSubstr("odb")), Not(HasSubstr("SQL")),
               Not(HasSubstr("what()")), Not(HasSubstr("exception")));
}

}  // namespace veldra_tests
