// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/builders.hpp"
#include "support/library_fixture.hpp"
#include "support/recording_reactor.hpp"
#include "support/thrown.hpp"

namespace veldra_tests {
namespace {

class ManagerReactor : public LibraryFixture {
 protected:
  std::shared_ptr<Library> created(LibraryManager& manager, const std::string& name = "walls.lib") {
    return manager.create((folder / name).c_str(), Unit::Millimetres, "");
  }

  // Whether the reactor is the one of the library. The name must be new to the library.
  static bool is_told(RecordingReactor& reactor, const std::shared_ptr<Library>& library,
                      const std::string& name = "facade") {
    reactor.forget();
    library->save(named<Tag>(name));
    const std::vector<std::string> kind_and_library = {"type Tag", "library"};
    const std::vector<std::string> calls = reactor.calls();
    return std::vector<std::string>(calls.begin() + (calls.empty() ? 0 : 1), calls.end()) ==
           kind_and_library;
  }

  static void expect_the_default_reactor(const std::shared_ptr<Library>& library) {
    library->save(named<veldra::Material>("Oak"));
    EXPECT_EQ(thrown_by([&] { library->save(named<veldra::Material>("Oak")); }).type,
              "veldra::ObjectNotUnique");
  }

  RecordingReactor reactor_;
};

TEST_F(ManagerReactor, libraries_have_the_default_one_at_first) {
  LibraryManager manager;
  expect_the_default_reactor(created(manager));
}

TEST_F(ManagerReactor, the_constructor_takes_none_as_well) {
  LibraryManager manager(nullptr);
  expect_the_default_reactor(created(manager));
}

TEST_F(ManagerReactor, the_one_of_the_constructor_goes_into_libraries_that_are_created) {
  LibraryManager manager(&reactor_);
  EXPECT_TRUE(is_told(reactor_, created(manager)));
}

TEST_F(ManagerReactor, the_one_of_the_constructor_goes_into_libraries_that_are_opened) {
  create_and_close();
  LibraryManager manager(&reactor_);
  EXPECT_TRUE(is_told(reactor_, manager.open(path.c_str(), false)));
}

TEST_F(ManagerReactor, one_that_is_set_goes_into_all_open_libraries) {
  LibraryManager manager;
  const auto walls = created(manager, "walls.lib");
  const auto floors = created(manager, "floors.lib");
  manager.setReactor(&reactor_);
  EXPECT_TRUE(is_told(reactor_, walls));
  EXPECT_TRUE(is_told(reactor_, floors));
}

TEST_F(ManagerReactor, one_that_is_set_goes_into_libraries_that_are_opened_later) {
  LibraryManager manager;
  manager.setReactor(&reactor_);
  EXPECT_TRUE(is_told(reactor_, created(manager)));
}

TEST_F(ManagerReactor, another_one_takes_its_place_in_all_open_libraries) {
  RecordingReactor other;
  LibraryManager manager(&reactor_);
  const auto library = created(manager);
  manager.setReactor(&other);
  EXPECT_TRUE(is_told(other, library));
  EXPECT_THAT(reactor_.calls(), IsEmpty());
}

TEST_F(ManagerReactor, null_brings_the_default_one_back) {
  reactor_.decision = Library::Reactor::UseExisting;
  LibraryManager manager(&reactor_);
  const auto library = created(manager);
  manager.setReactor(nullptr);
  expect_the_default_reactor(library);
  expect_the_default_reactor(created(manager, "floors.lib"));
  EXPECT_THAT(reactor_.calls(), IsEmpty());
}

TEST_F(ManagerReactor, released_libraries_are_passed_over) {
  LibraryManager manager;
  created(manager, "attic.lib");
  created(manager, "walls.lib");
  const auto floors = created(manager, "floors.lib");
  manager.setReactor(&reactor_);
  EXPECT_TRUE(is_told(reactor_, floors));
  EXPECT_TRUE(is_told(reactor_, created(manager, "walls.lib")));
}

TEST_F(ManagerReactor, one_that_is_set_when_all_are_released_serves_the_next) {
  LibraryManager manager;
  created(manager);
  manager.setReactor(&reactor_);
  EXPECT_THAT(reactor_.calls(), IsEmpty());
  EXPECT_TRUE(is_told(reactor_, created(manager)));
}

// A handle that is open already is given as it is.
TEST_F(ManagerReactor, asking_for_an_open_library_leaves_the_one_that_its_host_installed) {
  RecordingReactor hosts;
  LibraryManager manager(&reactor_);
  const auto library = created(manager);
  library->setReactor(&hosts);
  ASSERT_EQ(created(manager), library);
  ASSERT_EQ(manager.open((folder / "walls.lib").c_str(), false), library);
  EXPECT_TRUE(is_told(hosts, library));
  EXPECT_THAT(reactor_.calls(), IsEmpty());
}

TEST_F(ManagerReactor, libraries_of_others_are_left_alone) {
  const auto library = create();
  LibraryManager manager;
  LibraryManager other;
  const auto others = created(other, "floors.lib");
  manager.setReactor(&reactor_);
  EXPECT_FALSE(is_told(reactor_, library));
  EXPECT_FALSE(is_told(reactor_, others));
}

TEST_F(ManagerReactor, libraries_keep_it_when_their_manager_goes) {
  std::shared_ptr<Library> library;
  {
    LibraryManager manager(&reactor_);
    library = created(manager);
  }
  EXPECT_TRUE(is_told(reactor_, library));
}

TEST_F(ManagerReactor, an_error_of_opening_leaves_it_where_it_was) {
  LibraryManager manager(&reactor_);
  const auto library = created(manager);
  EXPECT_EQ(thrown_by([&] { manager.open((folder / "missing.lib").c_str(), false); }).type,
            "odb::sqlite::database_exception");
  EXPECT_TRUE(is_told(reactor_, library));
}

TEST_F(ManagerReactor, making_a_library_tells_it_nothing) {
  LibraryManager manager(&reactor_);
  created(manager);
  EXPECT_THAT(reactor_.calls(), IsEmpty());
}

TEST_F(ManagerReactor, the_manager_of_the_process_has_none_at_first_and_takes_one) {
  LibraryManager& manager = LibraryManager::instance();
  const auto library = created(manager);
  expect_the_default_reactor(library);
  manager.setReactor(&reactor_);
  EXPECT_TRUE(is_told(reactor_, library));
  manager.setReactor(nullptr);
}

}  // namespace
}  // namespace veldra_tests
