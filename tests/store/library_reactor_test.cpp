// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/builders.hpp"
#include "support/library_fixture.hpp"
#include "support/recording_reactor.hpp"
#include "support/thrown.hpp"

#include <cstring>
#include <type_traits>

namespace veldra_tests {
namespace {

using Reactor = Library::Reactor;

// Overrides nothing but what must be overridden.
class PlainReactor : public Reactor {
 public:
  ~PlainReactor() override = default;
};

class LibraryReactor : public LibraryFixture {
 protected:
  std::shared_ptr<Library> library_ = create();
};

// The interface.

TEST(LibraryReactorInterface, is_abstract_and_destroyed_through_the_base) {
  static_assert(std::is_abstract<Reactor>::value, "");
  static_assert(std::has_virtual_destructor<Reactor>::value, "");
  static_assert(!std::is_abstract<PlainReactor>::value, "");
}

TEST(LibraryReactorInterface, the_decisions_have_fixed_numbers) {
  static_assert(Reactor::UseExisting == 1, "");
  static_assert(Reactor::Overwrite == 2, "");
  static_assert(Reactor::Rename == 3, "");
}

TEST(LibraryReactorInterface, the_operations_have_these_types) {
  static_assert(std::is_same<decltype(&Reactor::resolveNameConflict),
                             int (Reactor::*)(Library&, ObjectType, String&)>::value,
                "");
  static_assert(std::is_same<decltype(&Reactor::objectSaved),
                             void (Reactor::*)(Library&, const ObjectKey&)>::value,
                "");
  static_assert(std::is_same<decltype(&Reactor::mayRemove),
                             int (Reactor::*)(Library&, const ObjectKey&)>::value,
                "");
  static_assert(std::is_same<decltype(&Reactor::objectRemoved),
                             void (Reactor::*)(Library&, const ObjectKey&)>::value,
                "");
  static_assert(
      std::is_same<decltype(&Reactor::libraryChanged), void (Reactor::*)(Library&)>::value, "");
  static_assert(
      std::is_same<decltype(&Reactor::typeChanged), void (Reactor::*)(Library&, ObjectType)>::value,
      "");
  static_assert(std::is_same<decltype(&Reactor::reserved), void (Reactor::*)()>::value, "");
}

// Where a virtual operation stands in the table of its class. Pointers to members hold the place
// in bytes; the lowest bit is a mark of some processors.
template <class Operation>
std::size_t slot_of(Operation operation) {
  std::size_t place;
  static_assert(sizeof operation >= sizeof place, "");
  std::memcpy(&place, &operation, sizeof place);
  return (place & ~std::size_t{1}) / sizeof(void*);
}

// A host that was built with other headers must find the operations at the same places. The
// destructor comes first and takes two places.
TEST(LibraryReactorInterface, the_operations_stand_in_this_order) {
  EXPECT_EQ(slot_of(&Reactor::resolveNameConflict), 2u);
  EXPECT_EQ(slot_of(&Reactor::objectSaved), 3u);
  EXPECT_EQ(slot_of(&Reactor::mayRemove), 4u);
  EXPECT_EQ(slot_of(&Reactor::objectRemoved), 5u);
  EXPECT_EQ(slot_of(&Reactor::libraryChanged), 6u);
  EXPECT_EQ(slot_of(&Reactor::typeChanged), 7u);
  EXPECT_EQ(slot_of(&Reactor::reserved), 8u);
}

// What a reactor does that overrides nothing.

class LibraryReactorDefaults : public LibraryReactor {
 protected:
  Reactor& base() { return reactor_; }

 private:
  PlainReactor reactor_;
};

TEST_F(LibraryReactorDefaults, a_conflict_is_refused_without_text) {
  String name("Oak");
  const Thrown thrown =
      thrown_by([&] { base().resolveNameConflict(*library_, ObjectType::Material, name); });
  EXPECT_EQ(thrown.type, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "");
  EXPECT_EQ(name.utf8(), "Oak");
}

TEST_F(LibraryReactorDefaults, a_removal_is_allowed) {
  EXPECT_EQ(base().mayRemove(*library_, ObjectKey(ObjectType::Tag, 1)), 0);
}

TEST_F(LibraryReactorDefaults, what_is_told_is_passed_over) {
  const std::string before = read_file(path);
  base().objectSaved(*library_, ObjectKey(ObjectType::Tag, 1));
  base().objectRemoved(*library_, ObjectKey(ObjectType::Tag, 1));
  base().typeChanged(*library_, ObjectType::Tag);
  base().libraryChanged(*library_);
  base().reserved();
  EXPECT_TRUE(read_file(path) == before);
}

// A library without a reactor.

TEST_F(LibraryReactor, without_one_a_conflict_is_refused_without_text) {
  library_->save(named<Material>("Oak"));
  const Thrown thrown = thrown_by([&] { library_->save(named<Material>("Oak")); });
  EXPECT_EQ(thrown.type, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "");
  EXPECT_EQ(library_->count<Material>(), 1u);
}

TEST_F(LibraryReactor, without_one_objects_are_saved_and_removed) {
  const auto tag = library_->save(named<Tag>("facade"));
  EXPECT_TRUE(library_->remove(tag));
  EXPECT_EQ(library_->count<Tag>(), 0u);
}

// Installing.

TEST_F(LibraryReactor, the_one_that_is_installed_is_told) {
  RecordingReactor reactor;
  library_->setReactor(&reactor);
  const auto tag = library_->save(named<Tag>("facade"));
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Tag 1", "type Tag", "library"));
  reactor.forget();
  library_->remove(tag);
  EXPECT_THAT(reactor.calls(),
              ElementsAre("may remove Tag 1", "removed Tag 1", "type Tag", "library"));
}

TEST_F(LibraryReactor, the_one_that_is_installed_decides) {
  RecordingReactor reactor;
  library_->save(named<Material>("Oak"));
  library_->setReactor(&reactor);
  reactor.decision = Reactor::UseExisting;
  EXPECT_EQ(library_->save(named<Material>("Oak"))->id(), 1u);
  EXPECT_THAT(reactor.calls_starting_with("conflict"), ElementsAre("conflict Material 'Oak'"));
  reactor.refusal = 1;
  EXPECT_FALSE(library_->remove<Material>(1));
}

TEST_F(LibraryReactor, it_gets_the_library_that_it_is_installed_in) {
  const Library* told = nullptr;
  RecordingReactor reactor;
  reactor.on_library_changed = [&](Library& library) { told = &library; };
  library_->setReactor(&reactor);
  library_->save(named<Tag>("facade"));
  EXPECT_EQ(told, library_.get());
}

TEST_F(LibraryReactor, another_one_takes_its_place) {
  RecordingReactor first;
  RecordingReactor second;
  library_->setReactor(&first);
  library_->setReactor(&second);
  library_->save(named<Tag>("facade"));
  EXPECT_THAT(first.calls(), IsEmpty());
  EXPECT_THAT(second.calls(), ElementsAre("saved Tag 1", "type Tag", "library"));
}

TEST_F(LibraryReactor, null_brings_the_default_back) {
  RecordingReactor reactor;
  reactor.decision = Reactor::UseExisting;
  library_->save(named<Material>("Oak"));
  library_->setReactor(&reactor);
  library_->setReactor(nullptr);
  EXPECT_EQ(thrown_by([&] { library_->save(named<Material>("Oak")); }).type,
            "veldra::ObjectNotUnique");
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(LibraryReactor, it_belongs_to_one_handle) {
  RecordingReactor reactor;
  library_->setReactor(&reactor);
  open()->save(named<Tag>("facade"));
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(LibraryReactor, one_may_serve_several_libraries) {
  RecordingReactor reactor;
  const auto other = Library::create(":memory:", veldra::Unit::Inches, "");
  library_->setReactor(&reactor);
  other->setReactor(&reactor);
  library_->save(named<Tag>("facade"));
  other->save(named<veldra::Layer>("Section"));
  EXPECT_THAT(reactor.calls(), ElementsAre("saved Tag 1", "type Tag", "library", "saved Layer 1",
                                           "type Layer", "library"));
}

TEST_F(LibraryReactor, it_is_not_told_of_metadata) {
  RecordingReactor reactor;
  library_->setReactor(&reactor);
  library_->locale("de-CH");
  library_->region("Alps");
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(LibraryReactor, a_library_never_deletes_it) {
  struct Watched : RecordingReactor {
    explicit Watched(bool& deleted) : deleted_(deleted) {}
    ~Watched() override { deleted_ = true; }
    bool& deleted_;
  };
  bool deleted = false;
  Watched reactor(deleted);
  library_->setReactor(&reactor);
  library_.reset();
  EXPECT_FALSE(deleted);
}

TEST_F(LibraryReactor, the_reserved_operation_is_never_called) {
  RecordingReactor reactor;
  library_->setReactor(&reactor);
  library_->save(full_composition("Wall"));
  library_->purge();
  EXPECT_THAT(reactor.calls_starting_with("reserved"), IsEmpty());
}

}  // namespace
}  // namespace veldra_tests
