// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"
#include "support/processes.hpp"

#include <functional>

namespace veldra_tests {
namespace {

/// Saving what is nothing, or is saved already.
template <class T>
class SavingNothing : public LibraryTest {
 protected:
  SavingNothing() : stored_(library->save(named<T>("stored"))) { reactor.forget(); }

  /// It returns what was given, enters the object into the mapping and touches nothing.
  void expect_done() {
    IdMapping mapping(library.get());
    EXPECT_EQ(library->save(std::shared_ptr<T>(), mapping), nullptr);
    EXPECT_EQ(mapping.size(), 0U);
    EXPECT_EQ(library->save(stored_, mapping), stored_);
    IdMapping::Value value;
    ASSERT_TRUE(mapping.compute({{ObjectTraits<T>::type, stored_->id()}, library.get()}, value));
    EXPECT_EQ(value.id, stored_->id());
    EXPECT_EQ(value.status, IdMapping::Existing);
    EXPECT_THAT(reactor.calls(), IsEmpty());
  }

  std::shared_ptr<T> stored_;
};
TYPED_TEST_SUITE(SavingNothing, AllKinds, KindNames);

TYPED_TEST(SavingNothing, changes_nothing) {
  const std::string before = this->rows();
  this->expect_done();
  EXPECT_EQ(this->rows(), before);
}

TYPED_TEST(SavingNothing, waits_for_nobody) {
  const LockingProcess other(this->path, "BEGIN EXCLUSIVE", 60000);
  this->expect_done();
  EXPECT_FALSE(other.time_is_over());
}

TYPED_TEST(SavingNothing, works_where_nothing_can_be_written) {
  this->library = Library::open(this->path.c_str(), true);
  this->library->setReactor(&this->reactor);
  this->stored_ = this->library->template get<TypeParam>("stored");
  this->expect_done();
}

TYPED_TEST(SavingNothing, works_within_a_call_of_the_reactor) {
  bool called = false;
  this->reactor.on_saved = [&](Library&, const ObjectKey&) {
    called = true;
    this->reactor.forget();
    this->expect_done();
  };
  this->library->save(named<TypeParam>("new"));
  EXPECT_TRUE(called);
}

TYPED_TEST(SavingNothing, works_within_a_snapshot) {
  const Library::Snapshot snapshot(*this->library);
  this->expect_done();
}

using SavingSomething = LibraryTest;

TEST_F(SavingSomething, waits_for_the_lock) {
  const auto layer = library->save(veldra::Layer::create("stored"));
  layer->name("changed");
  const LockingProcess other(path, "BEGIN EXCLUSIVE", 60000);
  EXPECT_EQ(thrown_by([&] { library->save(layer); }), "odb::timeout");
}

}  // namespace
}  // namespace veldra_tests
