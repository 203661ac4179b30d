// SPDX-License-Identifier: GPL-2.0-or-later
//
// What has been committed stays, also when the lock cannot be given back then.

#include "reliability/fault_vfs.hpp"
#include "support/builders.hpp"
#include "support/library_fixture.hpp"
#include "support/thrown.hpp"

#include <functional>

namespace veldra_tests {

namespace {

class KeptLock : public LibraryFixture {
 protected:
  KeptLock() { library->save(named<Tag>("first")); }
  void TearDown() override { FaultVfs::disarm(); }

  /// The first lock that is given back within the call is that of its commit.
  void expect_done(const std::function<void()>& call) {
    FaultVfs::arm({FaultVfs::Trouble::KeptLock, 1, FaultVfs::Repetition::Once});
    EXPECT_EQ(thrown_by(call), "");
    EXPECT_TRUE(FaultVfs::fired());
    FaultVfs::disarm();
  }

  /// What is in the file, when nobody has it open any more.
  std::string tags_in_the_file() {
    library.reset();
    EXPECT_EQ(damage(path), "");
    EXPECT_FALSE(file_exists(path + "-journal"));
    return PlainDatabase(path).value("SELECT group_concat(name) FROM Tag");
  }

  std::shared_ptr<Library> library =
      Library::create(FaultVfs::name_of(path).c_str(), Unit::Millimetres, "");
};

TEST_F(KeptLock, after_saving_is_no_failure) {
  const auto tag = named<Tag>("second");
  expect_done([&] { library->save(tag); });
  EXPECT_FALSE(tag->isDirty());
  EXPECT_NE(tag->id(), 0U);
  EXPECT_TRUE(library->save(named<Tag>("third"))) << "the same handle goes on";
  EXPECT_EQ(tags_in_the_file(), "'first,second,third'");
}

TEST_F(KeptLock, after_a_removal_is_no_failure) {
  library->save(named<Tag>("second"));
  bool removed = false;
  expect_done([&] { removed = library->remove<Tag>(1); });
  EXPECT_TRUE(removed);
  EXPECT_EQ(tags_in_the_file(), "'second'");
}

TEST_F(KeptLock, after_a_setting_is_no_failure) {
  expect_done([&] { library->region("Ostschweiz"); });
  library.reset();
  EXPECT_EQ(PlainDatabase(path).value("SELECT region FROM Meta"), "'Ostschweiz'");
}

TEST_F(KeptLock, after_a_transaction_is_no_failure) {
  expect_done([&] {
    Library::Transaction transaction(*library);
    library->save(named<Tag>("second"));
    library->remove<Tag>(1);
    transaction.commit();
  });
  EXPECT_EQ(library->count<Tag>(), 1U);
  EXPECT_EQ(tags_in_the_file(), "'second'");
}

}  // namespace

}  // namespace veldra_tests
