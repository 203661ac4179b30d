// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/copying_fixture.hpp"
#include "support/processes.hpp"

#include <chrono>

namespace veldra_tests {
namespace {

class CopyingFromSources : public CopyingTest {
 protected:
  /// Copies all and checks that the copy is whole.
  void expect_copy_from(const std::shared_ptr<const Library>& from) {
    EXPECT_EQ(thrown_by([&] { library->copyAll(from); }), "");
    EXPECT_EQ(contents_of(*library), contents_of(*from));
    EXPECT_EQ(damage(path), "");
  }
};

TEST_F(CopyingFromSources, a_source_may_be_open_for_reading_only) {
  put(full_composition("Wall"));
  source.reset();
  const FileState before(source_path());

  expect_copy_from(Library::open(source_path().c_str(), true));

  EXPECT_TRUE(before == FileState(source_path()));
}

TEST_F(CopyingFromSources, a_source_may_be_open_twice) {
  put(full_composition("Wall"));
  const auto second = Library::open(source_path().c_str(), false);
  const auto third = Library::open(source_path().c_str(), true);

  expect_copy_from(second);

  const auto read = second->get<Composition>("Wall");
  read->description("written by the other handle");
  EXPECT_TRUE(read->save());
  library->purge();
  expect_copy_from(third);
  EXPECT_EQ(library->get<Composition>("Wall")->description(),
            String("written by the other handle"));
}

TEST_F(CopyingFromSources, another_process_may_read_the_source) {
  put(full_composition("Wall"));
  const LockingProcess reading(source_path(), "BEGIN; SELECT count(*) FROM \"Tag\"", 60000);
  expect_copy_from(source);
}

TEST_F(CopyingFromSources, another_process_may_be_about_to_write_the_source) {
  put(full_composition("Wall"));
  const LockingProcess writing(
      source_path(), "BEGIN IMMEDIATE; UPDATE \"Composition\" SET \"comments\"='unfinished'",
      60000);
  expect_copy_from(source);
  EXPECT_EQ(library->get<Composition>("Wall")->comments(), String("Wall comments"));
}

TEST_F(CopyingFromSources, a_source_that_is_held_for_a_moment_is_waited_for) {
  put(full_composition("Wall"));
  const LockingProcess holding(source_path(), "BEGIN EXCLUSIVE", 400);
  expect_copy_from(source);
}

TEST_F(CopyingFromSources, a_destination_that_is_held_for_a_moment_is_waited_for) {
  put(full_composition("Wall"));
  const LockingProcess holding(path, "BEGIN IMMEDIATE", 400);
  expect_copy_from(source);
}

TEST_F(CopyingFromSources, a_source_that_is_held_too_long_is_a_time_out) {
  put(full_composition("Wall"));
  const std::string before = rows();
  Thrown thrown;
  {
    PlainDatabase other(source_path());
    other.execute("BEGIN EXCLUSIVE");
    const auto start = std::chrono::steady_clock::now();
    thrown = thrown_by([&] { library->copyAll(source); });
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(4500));
  }

  EXPECT_EQ(thrown, "odb::timeout");
  EXPECT_EQ(rows(), before);
  expect_copy_from(source);
}

TEST_F(CopyingFromSources, the_destination_may_be_copied_from_at_once) {
  put(full_composition("Wall"));
  library->copyAll(source);
  const auto third = create("third.lib");
  third->copyAll(library);
  EXPECT_EQ(contents_of(*third), contents_of(*source));
}

/// Two handles of one file are two libraries.
class CopyingWithinAFile : public CopyingTest {
 protected:
  std::shared_ptr<Library> second = Library::open(path.c_str(), false);
};

TEST_F(CopyingWithinAFile, named_objects_stand_for_themselves) {
  library->save(named<Tag>("tag"));
  library->save(named<Layer>("layer"));
  reactor.forget();
  const std::string before = rows();
  IdMapping mapping = fresh_mapping();

  EXPECT_EQ(thrown_by([&] { library->copyAll(second, mapping); }), "");

  EXPECT_EQ(rows(), before);
  EXPECT_EQ(mapping.size(), 15u);
  for (const auto& entry : mapping) {
    EXPECT_EQ(entry.first.source, second.get());
    EXPECT_EQ(entry.second.id, entry.first.key.id);
    EXPECT_EQ(entry.second.status, IdMapping::Existing);
  }
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(CopyingWithinAFile, keys_are_not_taken_for_those_of_this_very_library) {
  const auto tag = named<Tag>("tag");
  library->save(tag);
  const ObjectKey missing(ObjectType::Tag, 4711);
  IdMapping mapping = fresh_mapping();

  library->copy(second, {key_of(tag), missing}, mapping);

  EXPECT_EQ(mapping.size(), 1u);
}

TEST_F(CopyingWithinAFile, materials_and_compositions_are_doubled_under_new_names) {
  library->save(full_composition("Wall"));
  for (const auto& material : all_of<Material>(*library)) {
    material->clear_code();
    material->save();
  }
  reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = (name.utf8() + " copy").c_str();
    return Library::Reactor::Rename;
  };

  EXPECT_EQ(thrown_by([&] { library->copyAll(second); }), "");

  EXPECT_EQ(library->count<Composition>(), 2u);
  EXPECT_EQ(library->count<Material>(), 6u);
  EXPECT_EQ(library->count<Tag>(), 8u);
  EXPECT_EQ(second->get<Composition>("Wall copy")->layer(0).material()->name(),
            String("Wall outside copy"));
  EXPECT_EQ(second->get<Composition>("Wall")->layer(0).material()->name(), String("Wall outside"));
  EXPECT_EQ(damage(path), "");
}

TEST_F(CopyingWithinAFile, a_taken_name_ends_the_copy_as_ever) {
  library->save(named<Material>("Oak"));
  const std::string before = rows();
  EXPECT_EQ(thrown_by([&] { library->copyAll(second); }), "veldra::ObjectNotUnique");
  EXPECT_EQ(rows(), before);
}

class CopyingWithinReactors : public CopyingTest {};

TEST_F(CopyingWithinReactors, a_reactor_may_copy_into_another_library) {
  put(full_composition("Wall"));
  const auto third = create("third.lib");
  bool copied = false;
  reactor.on_saved = [&](Library&, const ObjectKey&) {
    if (copied) return;
    copied = true;
    third->copyAll(source);
  };

  library->save(named<Tag>("tag"));

  EXPECT_TRUE(copied);
  EXPECT_EQ(contents_of(*third), contents_of(*source));
  EXPECT_NE(library->get<Tag>("tag"), nullptr);
}

TEST_F(CopyingWithinReactors, a_reactor_may_let_the_source_and_the_destination_go) {
  put(full_composition("Wall"));
  const Contents expected = contents_of(*source);
  reactor.on_saved = [this](Library&, const ObjectKey&) {
    source.reset();
    library.reset();
  };
  library->copyAll(source);
  EXPECT_FALSE(library);
  EXPECT_EQ(contents_of(*Library::open(path.c_str(), true)), expected);
}

TEST_F(CopyingWithinReactors, a_reactor_may_copy_what_the_running_save_has_written) {
  reactor.on_saved = [&](Library&, const ObjectKey& key) {
    if (key.type == ObjectType::Tag) source->copy(library, {key});
  };

  library->save(full_material("Oak"));

  EXPECT_NE(source->get<Tag>("Oak tag 1"), nullptr);
  EXPECT_NE(source->get<Tag>("Oak tag 2"), nullptr);
  EXPECT_NE(library->get<Material>("Oak"), nullptr);
}

TEST_F(CopyingWithinReactors, a_reactor_may_copy_from_the_source_of_a_running_copy) {
  put(full_composition("Wall"));
  const auto third = create("third.lib");
  int copies = 0;
  reactor.on_saved = [&](Library&, const ObjectKey& key) {
    if (key.type != ObjectType::Material) return;
    ++copies;
    third->copyAll(source);
    third->purge();
  };

  library->copyAll(source);

  EXPECT_EQ(copies, 3);
  EXPECT_EQ(contents_of(*library), contents_of(*source));
}

TEST_F(CopyingWithinReactors, a_reactor_may_write_to_the_source_of_a_running_copy) {
  put(full_composition("Wall"));
  bool written = false;
  reactor.on_saved = [&](Library&, const ObjectKey&) {
    if (written) return;
    written = true;
    source->save(named<Tag>("written in between"));
  };

  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "");

  EXPECT_TRUE(written);
  EXPECT_NE(source->get<Tag>("written in between"), nullptr);
  EXPECT_EQ(values_of(library->get<Composition>("Wall")),
            values_of(source->get<Composition>("Wall")));
}

TEST_F(CopyingWithinReactors, a_copy_into_the_running_library_is_refused_and_the_copy_goes_on) {
  put(full_composition("Wall"));
  const auto third = create("third.lib");
  third->save(named<Tag>("third"));
  std::set<std::string> thrown;
  reactor.on_saved = [&](Library&, const ObjectKey&) {
    IdMapping mapping = fresh_mapping();
    thrown.insert(thrown_by([&] { library->copyAll(third, mapping); }).type);
    thrown.insert(thrown_by([&] { library->copy<Tag>(third, Ids{1}); }).type);
    thrown.insert(thrown_by([&] { library->copy(third, {{ObjectType::Tag, 1}}); }).type);
    thrown.insert(thrown_by([&] { library->remove<MaterialType>(1u); }).type);
    thrown.insert(thrown_by([&] { library->save(named<Tag>("nested")); }).type);
  };

  library->copyAll(source);

  EXPECT_THAT(thrown, ElementsAre("odb::already_in_transaction"));
  EXPECT_EQ(contents_of(*library), contents_of(*source));
}

TEST_F(CopyingWithinReactors, reading_within_sees_what_was_copied_so_far) {
  put(full_composition("Wall"));
  std::vector<unsigned long long> counts;
  reactor.on_saved = [&](Library& running, const ObjectKey& key) {
    if (key.type == ObjectType::Material) counts.push_back(running.count<Material>());
  };

  library->copyAll(source);

  EXPECT_THAT(counts, ElementsAre(1u, 2u, 3u));
}

TEST_F(CopyingWithinReactors, copying_is_allowed_when_the_copy_has_ended) {
  put(named<Tag>("first"));
  const auto third = create("third.lib");
  third->save(named<Layer>("second"));
  bool copied = false;
  reactor.on_library_changed = [&](Library& changed) {
    if (copied) return;
    copied = true;
    changed.copyAll(third);
  };

  library->copyAll(source);

  EXPECT_THAT(reactor.calls(), ElementsAre("saved Tag 101", "type Tag", "library",
                                           "saved Layer 101", "type Layer", "library"));
}

}  // namespace
}  // namespace veldra_tests
