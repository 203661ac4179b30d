// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/copying_fixture.hpp"

namespace veldra_tests {
namespace {

/// An exception that only a host knows.
struct HostIsTired {};

/// Two objects of one name that nothing else clashes with: "theirs" in the source, which brings a
/// tag, and "ours" in the destination.
template <class T>
class CopyingOfTakenName : public CopyingTest {
 protected:
  CopyingOfTakenName() {
    ours->description("ours");
    library->save(ours);
    theirs->description("theirs");
    theirs->addTag(named<Tag>("of theirs"));
    put(theirs);
    reactor.forget();
    before = rows();
  }

  void copy(IdMapping& mapping) { library->copy<T>(source, Ids{theirs->id()}, mapping); }
  void copy() { library->copy<T>(source, Ids{theirs->id()}); }

  std::string kind = kind_of<T>();
  std::string question = "conflict " + kind + " 'same'";
  std::shared_ptr<T> ours = named<T>("same");
  std::shared_ptr<T> theirs = named<T>("same");
  std::string before;
  IdMapping mapping = fresh_mapping();
};
using AskedKinds = testing::Types<Material, Composition>;
TYPED_TEST_SUITE(CopyingOfTakenName, AskedKinds, KindNames);

TYPED_TEST(CopyingOfTakenName, nothing_is_copied_by_default) {
  this->library->setReactor(nullptr);

  const Thrown thrown = thrown_by([&] { this->copy(this->mapping); });

  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "");
  EXPECT_EQ(this->rows(), this->before);
}

TYPED_TEST(CopyingOfTakenName, every_form_is_taken_back) {
  this->library->setReactor(nullptr);
  Library& library = *this->library;
  const Keys keys{key_of(this->theirs)};

  EXPECT_EQ(thrown_by([&] { this->copy(); }), "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown_by([&] { library.copy(this->source, keys); }), "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown_by([&] { library.copy(this->source, keys, this->mapping); }),
            "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown_by([&] { library.copyAll(this->source); }), "veldra::ObjectNotUnique");
  IdMapping another = this->fresh_mapping();
  EXPECT_EQ(thrown_by([&] { library.copyAll(this->source, another); }), "veldra::ObjectNotUnique");

  EXPECT_EQ(this->rows(), this->before);
}

TYPED_TEST(CopyingOfTakenName, entries_of_a_failed_copy_stay) {
  this->library->setReactor(nullptr);
  ASSERT_EQ(thrown_by([&] { this->copy(this->mapping); }), "veldra::ObjectNotUnique");

  const auto tag = this->source->template get<Tag>("of theirs");
  EXPECT_TRUE(this->mapping.has(this->source_key(tag)));
  EXPECT_FALSE(this->mapping.has(this->source_key(this->theirs)));
  EXPECT_EQ(this->library->template get<Tag>("of theirs"), nullptr);
}

TYPED_TEST(CopyingOfTakenName, a_failed_copy_tells_what_it_had_saved) {
  ASSERT_EQ(thrown_by([&] { this->copy(); }), "veldra::ObjectNotUnique");

  EXPECT_THAT(this->reactor.calls(),
              ElementsAre("saved Tag 101", this->question, "type Tag", "library"));
}

TYPED_TEST(CopyingOfTakenName, the_copy_can_be_repeated_once_the_name_is_free) {
  this->library->setReactor(nullptr);
  ASSERT_EQ(thrown_by([&] { this->copy(this->mapping); }), "veldra::ObjectNotUnique");
  this->ours->name("renamed");
  this->ours->save();

  IdMapping fresh = this->fresh_mapping();
  EXPECT_EQ(thrown_by([&] { this->copy(fresh); }), "");

  EXPECT_EQ(values_of(this->twin_of(fresh, this->theirs)), values_of(this->theirs));
  EXPECT_EQ(damage(this->path), "");
}

TYPED_TEST(CopyingOfTakenName, the_reactor_can_take_the_existing_object) {
  this->reactor.decision = Library::Reactor::UseExisting;
  const std::string ours_before = values_of(this->ours);

  this->copy(this->mapping);

  EXPECT_EQ(this->entry_of(this->mapping, this->theirs).id, this->ours->id());
  EXPECT_EQ(this->entry_of(this->mapping, this->theirs).status, IdMapping::Existing);
  EXPECT_EQ(values_of(this->library->template get<TypeParam>("same")), ours_before);
  EXPECT_THAT(this->reactor.calls(),
              ElementsAre("saved Tag 101", this->question, "type Tag", "library"));
  EXPECT_EQ(this->library->template count<TypeParam>(), 1u);
}

TYPED_TEST(CopyingOfTakenName, the_reactor_can_overwrite_the_existing_object) {
  this->reactor.decision = Library::Reactor::Overwrite;

  this->copy(this->mapping);

  const std::string id = std::to_string(this->ours->id());
  EXPECT_EQ(this->entry_of(this->mapping, this->theirs).id, this->ours->id());
  EXPECT_EQ(this->entry_of(this->mapping, this->theirs).status, IdMapping::Updated);
  EXPECT_EQ(values_of(this->library->template get<TypeParam>("same")), values_of(this->theirs));
  EXPECT_THAT(this->reactor.calls(),
              ElementsAre("saved Tag 101", this->question, "saved " + this->kind + " " + id,
                          "type Tag", "type " + this->kind, "library"));
  EXPECT_EQ(damage(this->path), "");
}

TYPED_TEST(CopyingOfTakenName, the_reactor_can_rename_the_copy) {
  this->reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = "another";
    return Library::Reactor::Rename;
  };
  const std::string ours_before = values_of(this->ours);

  this->copy(this->mapping);

  const auto twin = this->twin_of(this->mapping, this->theirs);
  EXPECT_EQ(twin->name(), String("another"));
  EXPECT_EQ(twin->description(), String("theirs"));
  EXPECT_EQ(this->entry_of(this->mapping, this->theirs).status, IdMapping::Inserted);
  EXPECT_EQ(values_of(this->library->template get<TypeParam>("same")), ours_before);
  EXPECT_EQ(this->theirs->name(), String("same"));
  EXPECT_EQ(this->source->template get<TypeParam>(this->theirs->id())->name(), String("same"));
}

TYPED_TEST(CopyingOfTakenName, a_new_name_that_is_taken_asks_again) {
  this->library->save(named<TypeParam>("taken"));
  this->reactor.forget();
  this->reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = name == String("same") ? "taken" : "free";
    return Library::Reactor::Rename;
  };

  this->copy();

  EXPECT_THAT(this->reactor.calls_starting_with("conflict"),
              ElementsAre(this->question, "conflict " + this->kind + " 'taken'"));
  EXPECT_EQ(this->library->template get<TypeParam>("free")->description(), String("theirs"));
}

TYPED_TEST(CopyingOfTakenName, decisions_can_follow_each_other) {
  const auto taken = named<TypeParam>("taken");
  this->library->save(taken);
  this->reactor.on_conflict = [](Library&, ObjectType, String& name) -> int {
    if (name == String("taken")) return Library::Reactor::Overwrite;
    name = "taken";
    return Library::Reactor::Rename;
  };

  this->copy(this->mapping);

  EXPECT_EQ(this->entry_of(this->mapping, this->theirs).id, taken->id());
  EXPECT_EQ(this->entry_of(this->mapping, this->theirs).status, IdMapping::Updated);
  EXPECT_EQ(this->library->template get<TypeParam>("taken")->description(), String("theirs"));
  EXPECT_EQ(this->library->template get<TypeParam>("same")->description(), String("ours"));
}

TYPED_TEST(CopyingOfTakenName, any_other_answer_asks_again) {
  std::vector<int> answers{0, 4, -1, Library::Reactor::UseExisting};
  std::size_t asked = 0;
  this->reactor.on_conflict = [&](Library&, ObjectType, String&) { return answers.at(asked++); };

  this->copy(this->mapping);

  EXPECT_EQ(asked, answers.size());
  EXPECT_EQ(this->reactor.calls_starting_with("conflict"),
            std::vector<std::string>(answers.size(), this->question));
  EXPECT_EQ(this->entry_of(this->mapping, this->theirs).status, IdMapping::Existing);
}

TYPED_TEST(CopyingOfTakenName, a_name_that_is_changed_without_renaming_is_not_used) {
  this->reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = "ignored";
    return Library::Reactor::Overwrite;
  };

  this->copy();

  EXPECT_EQ(this->library->template get<TypeParam>("ignored"), nullptr);
  EXPECT_EQ(this->library->template get<TypeParam>("same")->description(), String("theirs"));
}

TYPED_TEST(CopyingOfTakenName, only_the_reactor_of_the_destination_is_asked) {
  RecordingReactor of_source;
  this->source->setReactor(&of_source);
  Library* asked_by = nullptr;
  ObjectType asked_for{};
  this->reactor.on_conflict = [&](Library& library, ObjectType type, String&) {
    asked_by = &library;
    asked_for = type;
    return Library::Reactor::UseExisting;
  };

  this->copy();

  EXPECT_EQ(asked_by, this->library.get());
  EXPECT_EQ(asked_for, veldra::ObjectTraits<TypeParam>::type);
  EXPECT_THAT(of_source.calls(), IsEmpty());
}

TYPED_TEST(CopyingOfTakenName, an_exception_of_the_reactor_takes_the_copy_back) {
  this->reactor.on_conflict = [](Library&, ObjectType, String& name) -> int {
    name = "changed";
    throw HostIsTired();
  };
  const std::string theirs_before = state_of(this->theirs);

  EXPECT_THROW(this->copy(), HostIsTired);

  EXPECT_EQ(this->rows(), this->before);
  EXPECT_EQ(state_of(this->theirs), theirs_before);
  this->reactor.on_conflict = nullptr;
  this->reactor.decision = Library::Reactor::Overwrite;
  EXPECT_EQ(thrown_by([&] { this->copy(); }), "");
}

TYPED_TEST(CopyingOfTakenName, a_decision_is_kept_by_the_mapping) {
  this->reactor.decision = Library::Reactor::UseExisting;
  this->copy(this->mapping);
  const std::string once = this->rows();
  this->reactor.forget();

  this->library->copyAll(this->source, this->mapping);

  EXPECT_THAT(this->reactor.calls_starting_with("conflict"), IsEmpty());
  EXPECT_THAT(this->reactor.calls_starting_with("saved"), IsEmpty());
  EXPECT_EQ(this->rows(), once);
}

TYPED_TEST(CopyingOfTakenName, the_question_may_look_at_both_libraries_but_not_write) {
  const auto described = [](const Library& library) {
    return library.template get<TypeParam>("same")->description().utf8();
  };
  std::vector<std::string> found;
  this->reactor.on_conflict = [&](Library& library, ObjectType, String&) {
    found = {described(library), described(*this->source),
             thrown_by([&] { library.save(named<Tag>("nested")); }).type,
             thrown_by([&] { library.template purge<Tag>(); }).type};
    return Library::Reactor::Overwrite;
  };

  this->copy();

  EXPECT_THAT(found, ElementsAre("ours", "theirs", "odb::already_in_transaction",
                                 "odb::already_in_transaction"));
  EXPECT_EQ(described(*this->library), "theirs");
  EXPECT_NE(this->library->template get<Tag>("of theirs"), nullptr);
  EXPECT_EQ(this->library->template get<Tag>("nested"), nullptr);
}

class CopyingConflicts : public CopyingTest {
 protected:
  static std::shared_ptr<Material> with_code(const std::string& name, const std::string& code) {
    const auto material = named<Material>(name);
    material->code(code.c_str());
    return material;
  }

  static std::shared_ptr<Composition> wall_of(const std::shared_ptr<Material>& material) {
    const auto wall = named<Composition>("Wall");
    wall->appendLayer({material, Material::Function::None, 1.0});
    return wall;
  }
};

TEST_F(CopyingConflicts, a_code_that_is_taken_ends_the_copy_unasked) {
  library->save(with_code("Oak", "W-1"));
  put(with_code("Pine", "W-1"));
  reactor.forget();
  const std::string before = rows();
  reactor.decision = Library::Reactor::UseExisting;

  const Thrown thrown = thrown_by([&] { library->copyAll(source); });

  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "Material.code");
  EXPECT_EQ(rows(), before);
  EXPECT_THAT(reactor.calls_starting_with("conflict"), IsEmpty());
}

TEST_F(CopyingConflicts, an_overwritten_material_may_clash_in_its_new_code) {
  library->save(named<Material>("Oak"));
  library->save(with_code("Pine", "W-1"));
  put(with_code("Oak", "W-1"));
  const std::string before = rows();
  reactor.on_conflict = [](Library&, ObjectType, String&) { return Library::Reactor::Overwrite; };

  const Thrown thrown = thrown_by([&] { library->copyAll(source); });

  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "Material.code");
  EXPECT_EQ(rows(), before);
}

TEST_F(CopyingConflicts, materials_without_a_code_never_clash_in_it) {
  library->save(named<Material>("Oak"));
  put(named<Material>("Pine"));
  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "");
  EXPECT_EQ(library->count<Material>(), 2u);
}

TEST_F(CopyingConflicts, a_material_that_is_taken_as_it_is_stands_in_the_copied_layers) {
  const auto ours = named<Material>("Oak");
  library->save(ours);
  put(wall_of(named<Material>("Oak")));
  reactor.decision = Library::Reactor::UseExisting;

  library->copyAll(source);

  EXPECT_EQ(library->get<Composition>("Wall")->layer(0).material()->id(), ours->id());
  EXPECT_EQ(library->count<Material>(), 1u);
}

TEST_F(CopyingConflicts, a_renamed_material_stands_in_the_copied_layers) {
  library->save(named<Material>("Oak"));
  put(wall_of(named<Material>("Oak")));
  reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = "Oak of the source";
    return Library::Reactor::Rename;
  };

  library->copyAll(source);

  EXPECT_EQ(library->get<Composition>("Wall")->layer(0).material()->name(),
            String("Oak of the source"));
}

TEST_F(CopyingConflicts, an_overwritten_composition_loses_its_former_layers) {
  library->save(full_composition("Wall"));
  const auto slate = named<Material>("Slate");
  put(wall_of(slate));
  reactor.decision = Library::Reactor::Overwrite;

  library->copyAll(source);

  const auto wall = library->get<Composition>("Wall");
  EXPECT_EQ(values_of(wall), values_of(source->get<Composition>("Wall")));
  EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM \"Composition_layers\""), "1");
  EXPECT_EQ(damage(path), "");
}

TEST_F(CopyingConflicts, a_failure_deep_within_takes_everything_back) {
  put(full_composition("Roof"));
  put(wall_of(named<Material>("Oak")));
  library->save(named<Material>("Oak"));
  const std::string before = rows();
  const FileState source_before(source_path());

  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "veldra::ObjectNotUnique");

  EXPECT_EQ(rows(), before);
  EXPECT_TRUE(source_before == FileState(source_path()));
  library->remove(library->get<Material>("Oak"));
  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "");
  EXPECT_EQ(contents_of(*library), contents_of(*source));
}

TEST_F(CopyingConflicts, a_material_meets_an_earlier_one_of_the_same_copy_after_a_rename) {
  put(named<Material>("Oak"));
  put(named<Material>("Pine"));
  library->save(named<Material>("Oak"));
  reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = name == String("Oak") ? "Pine" : "Pine of the source";
    return Library::Reactor::Rename;
  };

  library->copyAll(source);

  EXPECT_NE(library->get<Material>("Pine"), nullptr);
  EXPECT_NE(library->get<Material>("Pine of the source"), nullptr);
  EXPECT_EQ(library->count<Material>(), 3u);
}

}  // namespace
}  // namespace veldra_tests
