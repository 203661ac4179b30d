// SPDX-License-Identifier: GPL-2.0-or-later
#include "files/reading.hpp"
#include "support/sanitized.hpp"
#include "tools/program.hpp"

#include "failure.hpp"

#include <unistd.h>

#include <chrono>
#include <fstream>

namespace veldra_tests {
namespace {

constexpr off_t gibibyte = off_t{1} << 30;

/// What is read of sources.
class Reading : public ProgramTest {
 protected:
  /// A file that takes no room on the disk.
  void make_sparse(const std::string& file, off_t size) const {
    write(file, "");
    ASSERT_EQ(::truncate(path(file).c_str(), size), 0);
  }

  static std::string failure_of_reading(const std::string& file, std::size_t most) {
    try {
      veldra_tool::content_of(file, most);
    } catch (const veldra_tool::Failure& failure) {
      return failure.what();
    }
    return "";
  }
};

TEST_F(Reading, of_more_than_a_gibibyte_is_refused_at_once) {
  make_sparse("large.idf", gibibyte + 1);
  const auto begin = std::chrono::steady_clock::now();
  const auto run = veldra({"import", "new.lib", "large.idf"});
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "veldra: 'large.idf': it is larger than 1 GiB\n");
  EXPECT_FALSE(exists("new.lib"));
}

TEST_F(Reading, of_a_gibibyte_is_not_refused_for_its_size) {
  EXPECT_EQ(veldra_tool::most_bytes_of_source, static_cast<std::size_t>(gibibyte));
  make_sparse("zeros", 1000);
  EXPECT_EQ(veldra_tool::content_of(path("zeros"), 1000), std::string(1000, '\0'));
  EXPECT_EQ(failure_of_reading(path("zeros"), 999),
            "'" + path("zeros") + "': it is larger than 999 bytes");
}

TEST_F(Reading, of_what_has_no_end_ends_at_the_same_size) {
  EXPECT_EQ(failure_of_reading("/dev/zero", 1 << 20),
            "'/dev/zero': it is larger than 1048576 bytes");
}

// The address sanitizer takes more addresses than could be left to the program.
#ifndef VELDRA_KEEPS_FREED_MEMORY
TEST_F(Reading, of_what_has_no_end_takes_no_memory_for_what_is_beyond_it) {
  const auto run = shell("ulimit -v 190000; veldra import a.lib - --max-source 64MB < /dev/zero");
  EXPECT_EQ(run.err, "veldra: 'standard input': it is larger than 67108864 bytes\n");
}

TEST_F(Reading, of_a_line_that_has_no_end_ends_within_512_megabytes) {
  const auto run = shell("ulimit -v 524288; veldra import a.lib - < /dev/zero");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "veldra: 'standard input': it has a line of more than 256 MiB\n");
}
#endif

TEST_F(Reading, of_two_long_lines_is_of_both) {
  constexpr std::size_t size = veldra_tool::most_bytes_of_line + 2;
  make_sparse("zeros", size);
  std::fstream file(path("zeros"));
  file.seekp(size / 2);
  file.put('\n').flush();
  EXPECT_EQ(veldra_tool::content_of(path("zeros")).size(), size);
}

TEST_F(Reading, of_what_says_no_size_is_of_all_of_it) {
  EXPECT_THAT(veldra_tool::content_of("/proc/self/status"), HasSubstr("Name:"));
}

}  // namespace
}  // namespace veldra_tests
