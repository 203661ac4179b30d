// SPDX-License-Identifier: GPL-2.0-or-later
#include "process/spool.hpp"
#include "failure.hpp"

#include "support/names.hpp"
#include "support/processes.hpp"
#include "support/temporary.hpp"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace veldra_tests {
namespace {

using veldra_tool::Spool;

class SpoolTest : public testing::Test {
 protected:
  /// What a spool gives when it is copied.
  std::string copied(const Spool& spool) const {
    const std::string file = folder_ / "copy";
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    EXPECT_EQ(spool.copy_to(descriptor), 0);
    ::close(descriptor);
    return read_file(file);
  }

  const TemporaryFolder folder_;
};

/// Has temporary files lie in another folder.
class TemporaryFiles {
 public:
  explicit TemporaryFiles(const std::string& folder) { ::setenv("TMPDIR", folder.c_str(), 1); }
  TemporaryFiles(const TemporaryFiles&) = delete;
  TemporaryFiles& operator=(const TemporaryFiles&) = delete;
  ~TemporaryFiles() { ::unsetenv("TMPDIR"); }
};

TEST_F(SpoolTest, gives_what_was_written_in_its_order_wherever_it_was_kept) {
  Spool spool(100);
  std::string all;
  for (int i = 0; i < 200; ++i) {
    spool.print("line {}\n", i);
    all += "line " + std::to_string(i) + "\n";
    if (i % 40 == 0) {
      spool.write(std::string(300, 'x'));
      all += std::string(300, 'x');
    }
  }
  EXPECT_EQ(copied(spool), all);
  EXPECT_EQ(copied(spool), all) << "the second time";
}

TEST_F(SpoolTest, leaves_no_name_in_the_folder_of_temporary_files) {
  const TemporaryFolder temporary;
  const TemporaryFiles there(temporary.path());
  Spool spool(10);
  spool.write("more than ten characters");
  EXPECT_NE(::rmdir(temporary.path().c_str()), -1);
  EXPECT_EQ(copied(spool), "more than ten characters");
}

TEST_F(SpoolTest, is_empty_again_when_it_was_cleared) {
  Spool spool(10);
  spool.write("more than ten characters");
  EXPECT_FALSE(spool.empty());
  spool.clear();
  EXPECT_TRUE(spool.empty());
  spool.write("new");
  EXPECT_EQ(copied(spool), "new");
}

TEST_F(SpoolTest, says_where_it_cannot_keep_a_text) {
  const TemporaryFiles there(folder_ / "nowhere");
  Spool spool(10);
  spool.write("little");
  try {
    spool.write("more than ten characters");
    FAIL() << "nothing was thrown";
  } catch (const veldra_tool::Failure& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("the output cannot be kept in the folder"));
    EXPECT_THAT(failure.what(), HasSubstr("nowhere"));
  }
}

TEST_F(SpoolTest, tells_why_it_cannot_be_copied) {
  for (const std::size_t memory : {std::size_t(1), Spool::usual_memory}) {
    Spool spool(memory);
    spool.write("text");
    const int full = ::open("/dev/full", O_WRONLY);
    EXPECT_EQ(spool.copy_to(full), ENOSPC);
    ::close(full);
    EXPECT_EQ(spool.copy_to(full), EBADF);
  }
}

TEST_F(SpoolTest, waits_for_a_reader_even_where_the_pipe_does_not) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe2(ends, O_NONBLOCK), 0);
  const std::string text(1 << 20, 'x');
  const auto read_all = [&] {
    ::fcntl(ends[0], F_SETFL, 0);
    std::string all;
    char block[4096];
    while (all.size() < text.size()) {
      ::usleep(100);
      const auto size = ::read(ends[0], block, sizeof block);
      if (size <= 0) break;
      all.append(block, static_cast<std::size_t>(size));
    }
    return all == text ? std::string("all") : std::string("not all");
  };
  const auto write_all = [&] {
    Spool spool;
    spool.write(text);
    return std::to_string(spool.copy_to(ends[1]));
  };
  EXPECT_THAT(run_at_once({read_all, write_all}), testing::ElementsAre("all", "0"));
  ::close(ends[0]);
  ::close(ends[1]);
}

}  // namespace
}  // namespace veldra_tests
