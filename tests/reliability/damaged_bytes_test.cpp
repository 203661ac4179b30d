// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/all_reads.hpp"
#include "reliability/both_ways.hpp"
#include "reliability/fault_vfs.hpp"
#include "reliability/scene.hpp"
#include "reliability/soak.hpp"
#include "reliability/sweep.hpp"
#include "support/database.hpp"
#include "support/thrown.hpp"

#include <gtest/gtest.h>

#include <random>

namespace veldra_tests {

namespace {

const std::size_t page_size = 4096;

// Whether SQLite finds nothing wrong with the pages of a file.
bool is_sound(const std::string& path) {
  bool sound = false;
  thrown_by([&] { sound = PlainDatabase(path).value("PRAGMA integrity_check") == "'ok'"; });
  return sound;
}

// A small library as bytes, to damage and to read.
class Damage {
 public:
  Damage() : scene_(Start::Current, ""), whole_(read_file(scene_.path())) {}

  const std::string& whole() const { return whole_; }
  unsigned long opened() const { return opened_; }

  // Of how many files lists were compared with what their objects are alone.
  unsigned long compared() const { return compared_; }

  // Reads the file with these bytes in every way: nothing but documented exceptions, and no change.
  void expect_harmless(const std::string& bytes) {
    const Deadline deadline;
    write_file(scene_.path(), bytes);
    const bool empty = counts_as_empty(scene_.path());
    open_and_read();
    EXPECT_TRUE(empty || read_file(scene_.path()) == bytes) << "reading has changed the file";
  }

 private:
  void open_and_read() {
    std::shared_ptr<veldra::Library> library;
    const Thrown thrown = thrown_by(
        [&] { library = veldra::Library::open(FaultVfs::name_of(scene_.path()).c_str(), false); });
    EXPECT_TRUE(is_documented_for_opening(thrown)) << thrown;
    if (library == nullptr) return;
    ++opened_;
    for (const ReadResult& result : read_everything(*library)) {
      EXPECT_TRUE(is_documented_for_reading(result.thrown)) << result.read << ": " << result.thrown;
    }
    // What an index or a tree that is broken gives depends on the way through it.
    if (!is_sound(scene_.path())) return;
    ++compared_;
    for (const BothWays& read : read_both_ways(*library)) {
      EXPECT_EQ(read.listed, read.one_by_one) << read.kind;
    }
  }

  Scene scene_;
  std::string whole_;
  unsigned long opened_ = 0;
  unsigned long compared_ = 0;
};

TEST(DamagedBytes, do_no_harm_wherever_they_are) {
  Damage damage;
  std::mt19937 random(number_from_environment("VELDRA_SEED", 1));
  const std::size_t stride = stride_or(499);
  unsigned long files = 0;
  // What is at the start of the file matters most.
  for (std::size_t at = 0; at < damage.whole().size() && !testing::Test::HasFailure(); ++at) {
    if (at % stride != 0 && (soaking() || at > 100)) continue;
    SCOPED_TRACE("byte " + std::to_string(at));
    std::string bytes = damage.whole();
    bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ (1 + random() % 255));
    damage.expect_harmless(bytes);
    ++files;
  }
  EXPECT_GT(damage.opened(), 0u);
  EXPECT_GT(damage.compared(), 0u);
  report_figure("of which lists were compared with single reads", damage.compared());
  report_figure("files with a damaged byte", files);
  report_figure("of which opened", damage.opened());
}

TEST(DamagedBytes, do_no_harm_when_they_are_many) {
  Damage damage;
  std::mt19937 random(number_from_environment("VELDRA_SEED", 1));
  const unsigned files = number_or(60, 20000);
  for (unsigned n = 0; n != files && !testing::Test::HasFailure(); ++n) {
    SCOPED_TRACE("file " + std::to_string(n));
    std::string bytes = damage.whole();
    for (unsigned left = 1 + random() % 64; left != 0; --left) {
      // The first pages decide whether the file is opened at all.
      const std::size_t start = random() % 16 == 0 ? 100 : 4 * page_size;
      bytes[start + random() % (bytes.size() - start)] = static_cast<char>(random());
    }
    damage.expect_harmless(bytes);
  }
  EXPECT_GT(damage.opened(), 0u);
  report_figure("files with many damaged bytes", files);
  report_figure("of which opened", damage.opened());
}

TEST(CutFile, does_no_harm_wherever_it_ends) {
  Damage damage;
  std::vector<std::size_t> sizes;
  const std::size_t within = stride_or(32) * 64;
  for (std::size_t size = within; size < damage.whole().size(); size += within) {
    sizes.push_back(size);
  }
  // A file of one byte is an empty one to SQLite.
  for (std::size_t size = 2; size < 110; size += stride_or(9)) sizes.push_back(size);
  for (const std::size_t size : sizes) {
    SCOPED_TRACE("size " + std::to_string(size));
    damage.expect_harmless(damage.whole().substr(0, size));
  }
  report_figure("cut files", sizes.size());
}

TEST(ExchangedPages, do_no_harm) {
  Damage damage;
  const std::size_t pages = damage.whole().size() / page_size;
  std::mt19937 random(number_from_environment("VELDRA_SEED", 1));
  const unsigned files = number_or(40, 2000);
  for (unsigned n = 0; n != files; ++n) {
    const std::size_t first = 1 + random() % (pages - 1);
    const std::size_t second = 1 + random() % (pages - 1);
    SCOPED_TRACE("pages " + std::to_string(first) + " and " + std::to_string(second));
    std::string bytes = damage.whole();
    bytes.replace(first * page_size, page_size, damage.whole(), second * page_size, page_size);
    bytes.replace(second * page_size, page_size, damage.whole(), first * page_size, page_size);
    damage.expect_harmless(bytes);
  }
  report_figure("files with exchanged pages", files);
}

}  // namespace

}  // namespace veldra_tests
