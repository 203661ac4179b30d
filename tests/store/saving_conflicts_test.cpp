// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <stdexcept>
#include <vector>

namespace veldra_tests {
namespace {

using Reactor = Library::Reactor;

/// Names that are taken, for the kinds of which the reactor decides. "Oak" is stored with the
/// description "stored".
template <class T>
class SavingConflicts : public LibraryTest {
 protected:
  SavingConflicts() : stored(named<T>("Oak")) {
    stored->description("stored");
    library->save(stored);
    reactor.forget();
  }

  static std::shared_ptr<T> described(const char* name, const char* description) {
    const auto object = named<T>(name);
    object->description(description);
    return object;
  }

  std::string asked(const std::string& name) const {
    return "conflict " + kind_name(ObjectTraits<T>::type) + " '" + name + "'";
  }

  std::string saved(unsigned id) const {
    return "saved " + kind_name(ObjectTraits<T>::type) + " " + std::to_string(id);
  }

  std::string changed() const { return "type " + kind_name(ObjectTraits<T>::type); }

  /// id, name and description of all objects, in the order of the ids.
  Rows stored_rows() const {
    return PlainDatabase(path).query("SELECT id, name, description FROM " + kind_of<T>() +
                                     " ORDER BY id");
  }

  static IdMapping::Value entry(const IdMapping& mapping, unsigned id, const Library* source) {
    IdMapping::Value value;
    EXPECT_TRUE(mapping.compute({ObjectKey(ObjectTraits<T>::type, id), source}, value));
    return value;
  }

  std::shared_ptr<T> stored;
};

using DecidedKinds = testing::Types<Material, Composition>;
TYPED_TEST_SUITE(SavingConflicts, DecidedKinds, KindNames);

TYPED_TEST(SavingConflicts, without_a_reactor_a_taken_name_is_not_unique) {
  this->library->setReactor(nullptr);
  const auto object = this->described("Oak", "new");
  const std::string state = state_of(object);
  const std::string before = this->rows();
  const Thrown thrown = thrown_by([&] { this->library->save(object); });
  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "");
  EXPECT_EQ(this->rows(), before);
  EXPECT_EQ(state_of(object), state);
}

TYPED_TEST(SavingConflicts, a_reactor_that_does_not_decide_is_the_default_one) {
  const auto object = this->described("Oak", "new");
  EXPECT_EQ(thrown_by([&] { this->library->save(object); }), "veldra::ObjectNotUnique");
  EXPECT_THAT(this->reactor.calls(), ElementsAre(this->asked("Oak")));
}

TYPED_TEST(SavingConflicts, the_reactor_gets_the_library_the_kind_and_the_name) {
  this->reactor.on_conflict = [&](Library& library, ObjectType type, String& name) {
    EXPECT_EQ(&library, this->library.get());
    EXPECT_EQ(type, ObjectTraits<TypeParam>::type);
    EXPECT_EQ(name, String("Oak"));
    return Reactor::UseExisting;
  };
  this->library->save(this->described("Oak", "new"));
  EXPECT_EQ(this->reactor.calls().size(), 1u);
}

TYPED_TEST(SavingConflicts, use_existing_makes_the_object_the_stored_one) {
  this->reactor.decision = Reactor::UseExisting;
  const auto object = this->described("Oak", "new");
  const std::string before = this->rows();
  IdMapping mapping(this->library.get());
  EXPECT_EQ(this->library->save(object, mapping), object);
  EXPECT_EQ(object->id(), this->stored->id());
  EXPECT_EQ(object->description(), String("stored"));
  EXPECT_EQ(object->library(), this->library);
  EXPECT_FALSE(object->isDirty());
  EXPECT_EQ(values_of(object), values_of(this->stored));
  EXPECT_EQ(this->rows(), before);
  EXPECT_EQ(this->entry(mapping, 0, nullptr).status, IdMapping::Existing);
  EXPECT_EQ(this->entry(mapping, 0, nullptr).id, this->stored->id());
  EXPECT_THAT(this->reactor.calls(), ElementsAre(this->asked("Oak")));
}

TYPED_TEST(SavingConflicts, use_existing_links_what_the_stored_one_refers_to) {
  this->stored->addTag(Tag::create("warm"));
  this->library->save(this->stored);
  this->reactor.decision = Reactor::UseExisting;
  const auto object = this->described("Oak", "new");
  this->library->save(object);
  ASSERT_EQ(object->tags().size(), 1u);
  EXPECT_EQ(object->tags()[0]->library(), this->library);
}

TYPED_TEST(SavingConflicts, overwrite_gives_the_stored_one_the_values) {
  this->reactor.decision = Reactor::Overwrite;
  const auto object = this->described("Oak", "new");
  IdMapping mapping(this->library.get());
  const auto result = this->library->save(object, mapping);
  EXPECT_EQ(result, object);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->id(), this->stored->id());
  EXPECT_EQ(result->description(), String("new"));
  EXPECT_EQ(result->library(), this->library);
  EXPECT_FALSE(result->isDirty());
  EXPECT_THAT(this->stored_rows(), ElementsAre(Row{"1", "'Oak'", "'new'"}));
  EXPECT_EQ(this->entry(mapping, 0, nullptr).status, IdMapping::Updated);
  EXPECT_EQ(this->entry(mapping, 0, nullptr).id, this->stored->id());
  EXPECT_THAT(this->reactor.calls(),
              ElementsAre(this->asked("Oak"), this->saved(1), this->changed(), "library"));
}

TYPED_TEST(SavingConflicts, overwrite_replaces_the_lists_as_well) {
  this->stored->tags(veldra::toModify) = {Tag::create("old")};
  this->stored->save();
  this->reactor.decision = Reactor::Overwrite;
  const auto object = this->described("Oak", "new");
  object->addTag(Tag::create("one"));
  object->addTag(Tag::create("two"));
  object->custom_value("Price", "9.99");
  this->library->save(object);
  EXPECT_EQ(values_of(this->library->template get<TypeParam>("Oak")), values_of(object));
  EXPECT_EQ(object->tags().size(), 2u);
}

TYPED_TEST(SavingConflicts, rename_saves_under_the_new_name) {
  this->reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = "Oak 2";
    return Reactor::Rename;
  };
  const auto object = this->described("Oak", "new");
  IdMapping mapping(this->library.get());
  EXPECT_EQ(this->library->save(object, mapping), object);
  EXPECT_EQ(object->name(), String("Oak 2"));
  EXPECT_FALSE(object->isDirty());
  EXPECT_EQ(object->id(), 2u);
  EXPECT_THAT(this->stored_rows(),
              ElementsAre(Row{"1", "'Oak'", "'stored'"}, Row{"2", "'Oak 2'", "'new'"}));
  EXPECT_EQ(this->entry(mapping, 0, nullptr).status, IdMapping::Inserted);
  EXPECT_THAT(this->reactor.calls(),
              ElementsAre(this->asked("Oak"), this->saved(2), this->changed(), "library"));
}

TYPED_TEST(SavingConflicts, a_new_name_that_is_taken_too_asks_again) {
  this->library->save(named<TypeParam>("Oak x"));
  this->reactor.forget();
  this->reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = String((name.utf8() + " x").c_str());
    return Reactor::Rename;
  };
  const auto object = this->library->save(this->described("Oak", "new"));
  EXPECT_EQ(object->name(), String("Oak x x"));
  EXPECT_THAT(this->reactor.calls_starting_with("conflict"),
              ElementsAre(this->asked("Oak"), this->asked("Oak x")));
}

TYPED_TEST(SavingConflicts, a_rename_to_the_same_name_asks_again) {
  int calls = 0;
  this->reactor.on_conflict = [&](Library&, ObjectType, String& name) {
    if (++calls == 3) name = "Oak 3";
    return Reactor::Rename;
  };
  EXPECT_EQ(this->library->save(this->described("Oak", "new"))->name(), String("Oak 3"));
  EXPECT_EQ(calls, 3);
}

TYPED_TEST(SavingConflicts, any_other_answer_changes_nothing_and_asks_again) {
  std::vector<int> answers = {0, 4, -1, 99, 1 << 30, Reactor::Rename};
  std::size_t calls = 0;
  this->reactor.on_conflict = [&](Library&, ObjectType, String& name) {
    EXPECT_EQ(name, String("Oak"));
    name = "Pine";
    return answers.at(calls++);
  };
  const auto object = this->library->save(this->described("Oak", "new"));
  EXPECT_EQ(calls, answers.size());
  EXPECT_EQ(object->name(), String("Pine"));
  EXPECT_EQ(this->stored_rows().size(), 2u);
}

TYPED_TEST(SavingConflicts, a_reactor_can_throw_what_it_likes) {
  this->reactor.on_conflict = [](Library&, ObjectType, String&) -> int {
    throw std::runtime_error("the user has cancelled");
  };
  const auto object = this->described("Oak", "new");
  const std::string state = state_of(object);
  const std::string before = this->rows();
  const Thrown thrown = thrown_by([&] { this->library->save(object); });
  EXPECT_EQ(thrown, "std::runtime_error");
  EXPECT_EQ(thrown.text, "the user has cancelled");
  EXPECT_EQ(state_of(object), state);
  EXPECT_EQ(this->rows(), before);
}

TYPED_TEST(SavingConflicts, a_copy_can_become_the_stored_object) {
  const auto other = this->create("other.lib");
  other->save(named<TypeParam>("First"));
  const auto source = other->save(this->described("Oak", "foreign"));
  const std::string source_state = state_of(source);
  this->reactor.decision = Reactor::UseExisting;
  IdMapping mapping(this->library.get());
  const auto copy = this->library->save(source, mapping);
  EXPECT_NE(copy, source);
  EXPECT_EQ(copy->id(), this->stored->id());
  EXPECT_EQ(copy->description(), String("stored"));
  EXPECT_EQ(copy->library(), this->library);
  EXPECT_EQ(state_of(source), source_state);
  EXPECT_EQ(this->entry(mapping, source->id(), other.get()).id, this->stored->id());
  EXPECT_EQ(this->entry(mapping, source->id(), other.get()).status, IdMapping::Existing);
}

TYPED_TEST(SavingConflicts, a_copy_can_overwrite_the_stored_object) {
  const auto other = this->create("other.lib");
  const auto source = other->save(this->described("Oak", "foreign"));
  const std::string source_state = state_of(source);
  this->reactor.decision = Reactor::Overwrite;
  IdMapping mapping(this->library.get());
  const auto copy = this->library->save(source, mapping);
  EXPECT_NE(copy, source);
  EXPECT_EQ(copy->id(), this->stored->id());
  EXPECT_EQ(copy->description(), String("foreign"));
  EXPECT_EQ(state_of(source), source_state);
  EXPECT_THAT(this->stored_rows(), ElementsAre(Row{"1", "'Oak'", "'foreign'"}));
  EXPECT_EQ(this->entry(mapping, source->id(), other.get()).status, IdMapping::Updated);
}

TYPED_TEST(SavingConflicts, a_copy_can_be_renamed_and_its_source_keeps_its_name) {
  const auto other = this->create("other.lib");
  const auto source = other->save(this->described("Oak", "foreign"));
  this->reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = "Oak 2";
    return Reactor::Rename;
  };
  const auto copy = this->library->save(source);
  EXPECT_EQ(copy->name(), String("Oak 2"));
  EXPECT_EQ(source->name(), String("Oak"));
  EXPECT_FALSE(source->isDirty());
}

TYPED_TEST(SavingConflicts, an_update_to_a_taken_name_asks_too) {
  const auto pine = this->library->save(this->described("Pine", "pine"));
  pine->name("Oak");
  const std::string state = state_of(pine);
  const std::string before = this->rows();
  this->reactor.forget();
  EXPECT_EQ(thrown_by([&] { this->library->save(pine); }), "veldra::ObjectNotUnique");
  EXPECT_THAT(this->reactor.calls(), ElementsAre(this->asked("Oak")));
  EXPECT_EQ(state_of(pine), state);
  EXPECT_EQ(this->rows(), before);
}

TYPED_TEST(SavingConflicts, an_update_can_take_another_name) {
  const auto pine = this->library->save(this->described("Pine", "pine"));
  pine->name("Oak");
  this->reactor.on_conflict = [](Library&, ObjectType, String& name) {
    name = "Larch";
    return Reactor::Rename;
  };
  IdMapping mapping(this->library.get());
  EXPECT_EQ(this->library->save(pine, mapping), pine);
  EXPECT_EQ(pine->id(), 2u);
  EXPECT_EQ(pine->name(), String("Larch"));
  EXPECT_THAT(this->stored_rows(),
              ElementsAre(Row{"1", "'Oak'", "'stored'"}, Row{"2", "'Larch'", "'pine'"}));
  EXPECT_EQ(this->entry(mapping, 2, this->library.get()).status, IdMapping::Updated);
}

TYPED_TEST(SavingConflicts, an_update_can_become_the_stored_object) {
  const auto pine = this->library->save(this->described("Pine", "pine"));
  pine->name("Oak");
  this->reactor.decision = Reactor::UseExisting;
  const std::string before = this->rows();
  EXPECT_EQ(this->library->save(pine), pine);
  EXPECT_EQ(pine->id(), 1u);
  EXPECT_EQ(pine->description(), String("stored"));
  EXPECT_FALSE(pine->isDirty());
  EXPECT_EQ(this->rows(), before);
}

TYPED_TEST(SavingConflicts, an_update_can_overwrite_the_stored_object) {
  const auto pine = this->library->save(this->described("Pine", "pine"));
  pine->name("Oak");
  this->reactor.decision = Reactor::Overwrite;
  IdMapping mapping(this->library.get());
  const auto result = this->library->save(pine, mapping);
  EXPECT_EQ(result->id(), 1u);
  EXPECT_EQ(result->description(), String("pine"));
  EXPECT_FALSE(result->isDirty());
  EXPECT_THAT(this->stored_rows(),
              ElementsAre(Row{"1", "'Oak'", "'pine'"}, Row{"2", "'Pine'", "'pine'"}));
  const auto entry = this->entry(mapping, 2, this->library.get());
  EXPECT_EQ(entry.id, 1u);
  EXPECT_EQ(entry.status, IdMapping::Updated);
}

using SavingCodes = LibraryTest;

std::shared_ptr<Material> coded(const char* name, const char* code) {
  const auto material = Material::create(name);
  material->code(code);
  return material;
}

TEST_F(SavingCodes, a_taken_code_is_not_unique_and_nobody_is_asked) {
  library->save(coded("Oak", "W-1"));
  reactor.forget();
  reactor.decision = Reactor::UseExisting;
  const auto pine = coded("Pine", "W-1");
  const std::string state = state_of(pine);
  const std::string before = rows();
  const Thrown thrown = thrown_by([&] { library->save(pine); });
  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "Material.code");
  EXPECT_EQ(state_of(pine), state);
  EXPECT_EQ(rows(), before);
  EXPECT_THAT(reactor.calls(), IsEmpty());
  pine->code("W-2");
  EXPECT_EQ(library->save(pine), pine);
}

TEST_F(SavingCodes, a_taken_code_counts_before_a_taken_name) {
  library->save(coded("Oak", "W-1"));
  reactor.forget();
  reactor.decision = Reactor::Overwrite;
  const Thrown thrown = thrown_by([&] { library->save(coded("Oak", "W-1")); });
  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "Material.code");
  EXPECT_THAT(reactor.calls(), IsEmpty());
}

TEST_F(SavingCodes, an_update_to_a_taken_code_is_not_unique) {
  library->save(coded("Oak", "W-1"));
  const auto pine = library->save(coded("Pine", "W-2"));
  pine->code("W-1");
  const Thrown thrown = thrown_by([&] { library->save(pine); });
  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "Material.code");
  EXPECT_TRUE(pine->isDirty());
}

TEST_F(SavingCodes, an_overwrite_into_a_taken_code_is_not_unique) {
  library->save(coded("Oak", "W-1"));
  library->save(coded("Pine", "W-2"));
  const std::string before = rows();
  reactor.decision = Reactor::Overwrite;
  const auto oak = coded("Oak", "W-2");
  const std::string state = state_of(oak);
  const Thrown thrown = thrown_by([&] { library->save(oak); });
  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "Material.code");
  EXPECT_EQ(state_of(oak), state);
  EXPECT_EQ(rows(), before);
}

TEST_F(SavingCodes, several_materials_may_have_no_code) {
  EXPECT_TRUE(library->save(Material::create("Oak")));
  EXPECT_TRUE(library->save(Material::create("Pine")));
  EXPECT_TRUE(library->save(coded("Larch", "")));
  EXPECT_EQ(thrown_by([&] { library->save(coded("Beech", "")); }), "veldra::ObjectNotUnique");
}

}  // namespace
}  // namespace veldra_tests
