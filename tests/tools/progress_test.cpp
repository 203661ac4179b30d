// SPDX-License-Identifier: GPL-2.0-or-later
#include "tools/terminal.hpp"

#include "progress.hpp"

#include <gmock/gmock.h>

#include <pty.h>
#include <unistd.h>

#include <stdexcept>

namespace veldra_tests {
namespace {

using std::chrono::milliseconds;
using veldra_tool::Progress;

/// A stream whose other end can be read.
class Stream {
 public:
  enum class Kind { Terminal, Pipe };

  explicit Stream(Kind kind) {
    int ends[2] = {-1, -1};
    const int failed = kind == Kind::Terminal
                           ? ::openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr)
                           : ::pipe(ends);
    if (failed != 0) throw std::runtime_error("there is no terminal and no pipe to be had");
    far_end_ = ends[0];
    near_end_ = ends[1];
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() {
    ::close(near_end_);
    ::close(far_end_);
  }

  int get() const { return near_end_; }

  /// What has come since the last time. What is written may take its time to come, so it reads up
  /// to a mark.
  std::string received() const {
    constexpr char mark = '|';
    if (::write(near_end_, &mark, 1) != 1) throw std::runtime_error("nothing can be written");
    std::string text;
    for (char character = 0; ::read(far_end_, &character, 1) == 1 && character != mark;) {
      text += character;
    }
    return text;
  }

 private:
  int far_end_;
  int near_end_;
};

/// A clock that goes when it is told to.
class ProgressLine : public testing::Test {
 protected:
  void SetUp() override {
    if (!terminals_can_be_made()) GTEST_SKIP() << "no terminal can be made here";
  }

  Progress::Time now_;

  std::function<Progress::Time()> clock() {
    return [this] { return now_; };
  }
};

TEST_F(ProgressLine, comes_on_a_terminal_when_the_work_takes_over_half_a_second) {
  const Stream terminal(Stream::Kind::Terminal);
  Progress progress("importing", terminal.get(), clock());
  progress.step();
  now_ += milliseconds(500);
  progress.step();
  EXPECT_EQ(terminal.received(), "");
  now_ += milliseconds(1);
  progress.step();
  EXPECT_EQ(terminal.received(), "\r\x1b[Kimporting: 3");
}

TEST_F(ProgressLine, is_written_over_ten_times_a_second_at_most) {
  const Stream terminal(Stream::Kind::Terminal);
  Progress progress("copying", terminal.get(), clock());
  now_ += milliseconds(501);
  progress.step();
  now_ += milliseconds(100);
  progress.step();
  now_ += milliseconds(1);
  progress.step();
  EXPECT_EQ(terminal.received(), "\r\x1b[Kcopying: 1\r\x1b[Kcopying: 3");
}

TEST_F(ProgressLine, is_wiped_at_the_end) {
  const Stream terminal(Stream::Kind::Terminal);
  {
    Progress progress("copying", terminal.get(), clock());
    now_ += milliseconds(501);
    progress.step();
    terminal.received();
  }
  EXPECT_EQ(terminal.received(), "\r\x1b[K");
}

TEST_F(ProgressLine, leaves_no_trace_of_a_short_work) {
  const Stream terminal(Stream::Kind::Terminal);
  {
    Progress progress("copying", terminal.get(), clock());
    progress.step();
  }
  EXPECT_EQ(terminal.received(), "");
}

TEST_F(ProgressLine, never_comes_where_there_is_no_terminal) {
  const Stream pipe(Stream::Kind::Pipe);
  {
    Progress progress("copying", pipe.get(), clock());
    now_ += std::chrono::hours(1);
    progress.step();
  }
  EXPECT_EQ(pipe.received(), "");
}

}  // namespace
}  // namespace veldra_tests
