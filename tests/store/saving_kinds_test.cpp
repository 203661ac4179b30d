// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <vector>

namespace veldra_tests {
namespace {

/// What the six kinds have in common when they are saved.
template <class T>
class SavingKinds : public LibraryTest {
 protected:
  static constexpr ObjectType kind = ObjectTraits<T>::type;

  std::string saved(unsigned id) const {
    return "saved " + kind_name(kind) + " " + std::to_string(id);
  }

  std::string changed() const { return "type " + kind_name(kind); }

  std::string stored_name(unsigned id) const {
    return PlainDatabase(path).value("SELECT name FROM " + kind_of<T>() +
                                     " WHERE id=" + std::to_string(id));
  }

  unsigned long long count() const { return library->count<T>(); }

  /// The entry of an object that belongs to no library, or to `source` with that id.
  static IdMapping::Value entry(const IdMapping& mapping, unsigned id, const Library* source) {
    IdMapping::Value value(4294967295u, IdMapping::Inserted);
    EXPECT_TRUE(mapping.compute({ObjectKey(kind, id), source}, value));
    return value;
  }
};

TYPED_TEST_SUITE(SavingKinds, AllKinds, KindNames);

TYPED_TEST(SavingKinds, a_new_object_is_inserted_bound_and_clean) {
  const auto object = named<TypeParam>("Alpha");
  const auto before = this->count();
  EXPECT_EQ(this->library->save(object), object);
  EXPECT_NE(object->id(), 0u);
  EXPECT_EQ(object->library(), this->library);
  EXPECT_FALSE(object->isDirty());
  EXPECT_EQ(this->stored_name(object->id()), "'Alpha'");
  EXPECT_EQ(this->count(), before + 1);
  EXPECT_THAT(this->reactor.calls(),
              ElementsAre(this->saved(object->id()), this->changed(), "library"));
}

TYPED_TEST(SavingKinds, an_insertion_is_entered_in_the_mapping) {
  const auto object = named<TypeParam>("Alpha");
  IdMapping mapping(this->library.get());
  EXPECT_EQ(this->library->save(object, mapping), object);
  const auto entry = this->entry(mapping, 0, nullptr);
  EXPECT_EQ(entry.id, object->id());
  EXPECT_EQ(entry.status, IdMapping::Inserted);
}

TYPED_TEST(SavingKinds, a_null_pointer_gives_null_and_writes_nothing) {
  const std::string before = read_file(this->path);
  IdMapping mapping(this->library.get());
  EXPECT_FALSE(this->library->save(std::shared_ptr<TypeParam>()));
  EXPECT_FALSE(this->library->save(std::shared_ptr<TypeParam>(), mapping));
  EXPECT_TRUE(read_file(this->path) == before);
  EXPECT_EQ(mapping.size(), 0u);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(SavingKinds, an_unchanged_object_is_left_alone) {
  const auto object = this->library->save(named<TypeParam>("Alpha"));
  const auto loaded = this->library->template get<TypeParam>(object->id());
  const std::string before = this->rows();
  this->reactor.forget();
  IdMapping mapping(this->library.get());
  EXPECT_EQ(this->library->save(object), object);
  EXPECT_EQ(this->library->save(loaded, mapping), loaded);
  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
  const auto entry = this->entry(mapping, object->id(), this->library.get());
  EXPECT_EQ(entry.id, object->id());
  EXPECT_EQ(entry.status, IdMapping::Existing);
}

TYPED_TEST(SavingKinds, in_a_library_for_reading_nothing_and_the_unchanged_are_saved) {
  const unsigned id = this->library->save(named<TypeParam>("Alpha"))->id();
  this->library.reset();
  this->library = Library::open(this->path.c_str(), true);
  const auto loaded = this->library->template get<TypeParam>(id);
  EXPECT_EQ(this->library->save(std::shared_ptr<TypeParam>()), nullptr);
  EXPECT_EQ(this->library->save(loaded), loaded);
}

TYPED_TEST(SavingKinds, an_object_of_another_library_is_copied) {
  const auto other = this->create("other.lib");
  other->save(named<TypeParam>("First"));
  const auto source = other->save(named<TypeParam>("Alpha"));
  const std::string source_state = state_of(source);
  IdMapping mapping(this->library.get());
  const auto copy = this->library->save(source, mapping);
  ASSERT_TRUE(copy);
  EXPECT_NE(copy, source);
  EXPECT_EQ(state_of(source), source_state);
  EXPECT_EQ(copy->library(), this->library);
  EXPECT_FALSE(copy->isDirty());
  EXPECT_EQ(values_of(copy), values_of(source));
  EXPECT_EQ(this->stored_name(copy->id()), "'Alpha'");
  const auto entry = this->entry(mapping, source->id(), other.get());
  EXPECT_EQ(entry.id, copy->id());
  EXPECT_EQ(entry.status, IdMapping::Inserted);
  EXPECT_THAT(this->reactor.calls(),
              ElementsAre(this->saved(copy->id()), this->changed(), "library"));
}

TYPED_TEST(SavingKinds, an_object_in_the_mapping_is_not_copied_again) {
  const auto other = this->create("other.lib");
  const auto source = other->save(named<TypeParam>("Alpha"));
  IdMapping mapping(this->library.get());
  const auto copy = this->library->save(source, mapping);
  const std::string before = this->rows();
  this->reactor.forget();
  const auto again = this->library->save(source, mapping);
  const auto another_handle =
      this->library->save(other->template get<TypeParam>(source->id()), mapping);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->id(), copy->id());
  EXPECT_EQ(again->library(), this->library);
  EXPECT_FALSE(again->isDirty());
  EXPECT_EQ(another_handle->id(), copy->id());
  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
  EXPECT_EQ(this->entry(mapping, source->id(), other.get()).status, IdMapping::Inserted);
}

TYPED_TEST(SavingKinds, a_mapping_tells_libraries_apart) {
  const auto one = this->create("one.lib");
  const auto two = this->create("two.lib");
  const auto first = one->save(named<TypeParam>("First"));
  const auto second = two->save(named<TypeParam>("Second"));
  ASSERT_EQ(first->id(), second->id());
  IdMapping mapping(this->library.get());
  EXPECT_EQ(this->library->save(first, mapping)->name(), String("First"));
  EXPECT_EQ(this->library->save(second, mapping)->name(), String("Second"));
}

TYPED_TEST(SavingKinds, new_objects_of_one_mapping_are_told_apart) {
  IdMapping mapping(this->library.get());
  const auto first = this->library->save(named<TypeParam>("First"), mapping);
  const auto second = this->library->save(named<TypeParam>("Second"), mapping);
  EXPECT_NE(first->id(), second->id());
  EXPECT_EQ(this->stored_name(first->id()), "'First'");
  EXPECT_EQ(this->stored_name(second->id()), "'Second'");
  EXPECT_EQ(this->entry(mapping, 0, nullptr).id, second->id());
}

TYPED_TEST(SavingKinds, an_entry_of_an_object_that_is_gone_gives_null_and_writes_nothing) {
  const auto other = this->create("other.lib");
  const auto source = other->save(named<TypeParam>("Alpha"));
  IdMapping mapping(this->library.get());
  mapping.assign({ObjectKey(TestFixture::kind, source->id()), other.get()},
                 {999, IdMapping::Inserted});
  const std::string before = this->rows();
  EXPECT_FALSE(this->library->save(source, mapping));
  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(SavingKinds, an_object_of_a_closed_library_is_saved_by_its_id) {
  const auto object = this->library->save(named<TypeParam>("Alpha"));
  const unsigned id = object->id();
  this->reopen();
  const std::string before = this->rows();
  EXPECT_FALSE(object->library());
  EXPECT_FALSE(object->save());
  EXPECT_EQ(this->library->save(object), object);
  EXPECT_EQ(object->id(), id);
  EXPECT_EQ(this->rows(), before);
  EXPECT_EQ(this->stored_name(id), "'Alpha'");
}

TYPED_TEST(SavingKinds, a_clone_is_a_new_object) {
  const auto object = this->library->save(named<TypeParam>("Alpha"));
  const auto other = this->create("other.lib");
  const auto clone = object->clone();
  EXPECT_EQ(other->save(clone), clone);
  EXPECT_EQ(clone->library(), other);
  EXPECT_EQ(object->library(), this->library);
}

TYPED_TEST(SavingKinds, a_library_for_reading_only_refuses_in_the_words_of_the_database) {
  this->library.reset();
  this->library = Library::open(this->path.c_str(), true);
  const auto object = named<TypeParam>("Alpha");
  const std::string state = state_of(object);
  const Thrown thrown = thrown_by([&] { this->library->save(object); });
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.code, 8);
  EXPECT_EQ(state_of(object), state);
}

TYPED_TEST(SavingKinds, only_uniqueness_is_a_conflict) {
  PlainDatabase(this->path)
      .execute("CREATE TRIGGER refuse BEFORE INSERT ON " + kind_of<TypeParam>() +
               " BEGIN SELECT RAISE(ABORT, 'no new " + kind_of<TypeParam>() + ".name'); END");
  const auto object = named<TypeParam>("Alpha");
  const std::string state = state_of(object);
  const std::string before = this->rows();
  const Thrown thrown = thrown_by([&] { this->library->save(object); });
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.code, 19);
  EXPECT_EQ(thrown.extended, 1811);
  EXPECT_EQ(thrown.text, "no new " + kind_of<TypeParam>() + ".name");
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
  EXPECT_EQ(state_of(object), state);
  EXPECT_EQ(this->rows(), before);
  PlainDatabase(this->path).execute("DROP TRIGGER refuse");
  EXPECT_EQ(this->library->save(object), object);
}

TYPED_TEST(SavingKinds, a_violated_check_passes_unchanged) {
  PlainDatabase(this->path)
      .execute("ALTER TABLE " + kind_of<TypeParam>() +
               " ADD COLUMN \"the.name\" INTEGER DEFAULT 1 CONSTRAINT \"the.name\" CHECK(name <> "
               "'Alpha')");
  const auto object = named<TypeParam>("Alpha");
  const Thrown thrown = thrown_by([&] { this->library->save(object); });
  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.code, 19);
  EXPECT_EQ(thrown.extended, 275);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
  EXPECT_TRUE(this->library->save(named<TypeParam>("Beta")));
}

TYPED_TEST(SavingKinds, a_name_that_is_not_utf16_raises_and_changes_nothing) {
  const unsigned short broken[] = {'A', 0xDC00, 'b', 0};
  const auto object = named<TypeParam>("Alpha")->clone();
  const auto bad = [&] {
    if constexpr (std::is_same_v<TypeParam, CustomProperty>) {
      return CustomProperty::create(String(broken), ObjectType::Material);
    } else {
      return TypeParam::create(String(broken));
    }
  }();
  const std::string state = state_of(bad);
  const std::string before = this->rows();
  EXPECT_EQ(thrown_by([&] { this->library->save(bad); }), "utf8::invalid_utf16");
  EXPECT_EQ(state_of(bad), state);
  EXPECT_EQ(this->rows(), before);
  EXPECT_EQ(this->library->save(object), object);
}

TYPED_TEST(SavingKinds, save_of_an_unbound_object_writes_nothing) {
  const auto object = named<TypeParam>("Alpha");
  const auto before = this->count();
  EXPECT_FALSE(object->save());
  EXPECT_FALSE(object->save(std::shared_ptr<Library>()));
  EXPECT_EQ(object->id(), 0u);
  EXPECT_TRUE(object->isDirty());
  EXPECT_EQ(this->count(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(SavingKinds, save_into_a_library_gives_what_the_library_gives) {
  const auto object = named<TypeParam>("Alpha");
  EXPECT_EQ(object->save(this->library), object);
  EXPECT_EQ(object->library(), this->library);
  EXPECT_TRUE(object->save());
  const auto other = this->create("other.lib");
  const auto copy = object->save(other);
  ASSERT_TRUE(copy);
  EXPECT_NE(copy, object);
  EXPECT_EQ(copy->library(), other);
}

/// A handle that no `std::shared_ptr` holds.
template <class T>
class Loose : public T {
 public:
  Loose() : T() {}
};

TYPED_TEST(SavingKinds, a_handle_that_no_pointer_shares_cannot_be_saved) {
  Loose<TypeParam> loose;
  EXPECT_EQ(thrown_by([&] { loose.save(this->library); }), "std::bad_weak_ptr");
  EXPECT_FALSE(loose.save(std::shared_ptr<Library>()));
  EXPECT_FALSE(loose.save());
}

/// The kinds whose names can change.
template <class T>
class SavingRenamed : public SavingKinds<T> {
 protected:
  SavingRenamed() : object(this->library->save(named<T>("Alpha"))) { this->reactor.forget(); }

  std::shared_ptr<T> object;
};

using RenamableKinds = testing::Types<MaterialType, Layer, CustomProperty, Material, Composition>;
TYPED_TEST_SUITE(SavingRenamed, RenamableKinds, KindNames);

TYPED_TEST(SavingRenamed, a_changed_object_is_updated) {
  const auto loaded = this->library->template get<TypeParam>(this->object->id());
  const auto before = this->count();
  loaded->name("Omega");
  IdMapping mapping(this->library.get());
  EXPECT_EQ(this->library->save(loaded, mapping), loaded);
  EXPECT_FALSE(loaded->isDirty());
  EXPECT_EQ(loaded->id(), this->object->id());
  EXPECT_EQ(this->stored_name(loaded->id()), "'Omega'");
  EXPECT_EQ(this->count(), before);
  const auto entry = this->entry(mapping, loaded->id(), this->library.get());
  EXPECT_EQ(entry.id, loaded->id());
  EXPECT_EQ(entry.status, IdMapping::Updated);
  EXPECT_THAT(this->reactor.calls(),
              ElementsAre(this->saved(loaded->id()), this->changed(), "library"));
}

TYPED_TEST(SavingRenamed, save_stores_a_change_in_its_own_library) {
  this->object->name("Omega");
  EXPECT_TRUE(this->object->save());
  EXPECT_EQ(this->stored_name(this->object->id()), "'Omega'");
  EXPECT_FALSE(this->object->isDirty());
}

TYPED_TEST(SavingRenamed, the_last_of_two_handles_wins) {
  const auto one = this->library->template get<TypeParam>(this->object->id());
  const auto two = this->library->template get<TypeParam>(this->object->id());
  one->name("One");
  two->name("Two");
  EXPECT_TRUE(one->save());
  EXPECT_TRUE(two->save());
  EXPECT_EQ(this->stored_name(this->object->id()), "'Two'");
}

TYPED_TEST(SavingRenamed, an_object_whose_row_is_gone_is_not_found) {
  PlainDatabase(this->path)
      .execute("DELETE FROM " + kind_of<TypeParam>() +
               " WHERE id=" + std::to_string(this->object->id()));
  this->object->name("Omega");
  const std::string state = state_of(this->object);
  const std::string before = this->rows();
  EXPECT_EQ(thrown_by([&] { this->library->save(this->object); }), "veldra::ObjectNotFound");
  EXPECT_EQ(thrown_by([&] { this->object->save(); }), "veldra::ObjectNotFound");
  EXPECT_EQ(state_of(this->object), state);
  EXPECT_EQ(this->rows(), before);
}

TYPED_TEST(SavingRenamed, an_unbound_object_whose_row_is_gone_is_not_found) {
  this->object->name("Omega");
  this->library.reset();
  const auto other = this->create("other.lib");
  PlainDatabase(this->folder / "other.lib")
      .execute("DELETE FROM " + kind_of<TypeParam>() +
               " WHERE id=" + std::to_string(this->object->id()));
  EXPECT_EQ(thrown_by([&] { other->save(this->object); }), "veldra::ObjectNotFound");
  EXPECT_FALSE(this->object->library());
  EXPECT_TRUE(this->object->isDirty());
}

TYPED_TEST(SavingRenamed, an_unbound_object_with_an_id_overwrites_the_row_of_that_id) {
  this->object->name("Omega");
  const unsigned id = this->object->id();
  this->reopen();
  EXPECT_EQ(this->library->save(this->object), this->object);
  EXPECT_EQ(this->object->library(), this->library);
  EXPECT_EQ(this->object->id(), id);
  EXPECT_EQ(this->stored_name(id), "'Omega'");
}

TYPED_TEST(SavingRenamed, a_changed_object_of_another_library_is_copied_as_it_is_in_memory) {
  const auto other = this->create("other.lib");
  this->object->name("Omega");
  const std::string state = state_of(this->object);
  const auto copy = other->save(this->object);
  EXPECT_EQ(copy->name(), String("Omega"));
  EXPECT_EQ(state_of(this->object), state);
  EXPECT_TRUE(this->object->isDirty());
  EXPECT_EQ(this->stored_name(this->object->id()), "'Alpha'");
}

/// The kinds that merge by name.
template <class T>
class SavingMerged : public SavingKinds<T> {
 protected:
  SavingMerged() : stored(this->library->save(named<T>("Alpha"))) { this->reactor.forget(); }

  std::shared_ptr<T> stored;
};

using MergedKinds = testing::Types<Tag, MaterialType, Layer, CustomProperty>;
TYPED_TEST_SUITE(SavingMerged, MergedKinds, KindNames);

TYPED_TEST(SavingMerged, a_new_object_of_a_taken_name_becomes_the_stored_one) {
  const auto object = named<TypeParam>("Alpha");
  const std::string before = this->rows();
  IdMapping mapping(this->library.get());
  EXPECT_EQ(this->library->save(object, mapping), object);
  EXPECT_EQ(object->id(), this->stored->id());
  EXPECT_EQ(object->library(), this->library);
  EXPECT_FALSE(object->isDirty());
  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
  const auto entry = this->entry(mapping, 0, nullptr);
  EXPECT_EQ(entry.id, this->stored->id());
  EXPECT_EQ(entry.status, IdMapping::Existing);
}

TYPED_TEST(SavingMerged, an_object_of_another_library_becomes_the_stored_one) {
  const auto other = this->create("other.lib");
  other->save(named<TypeParam>("First"));
  const auto source = other->save(named<TypeParam>("Alpha"));
  const std::string source_state = state_of(source);
  const std::string before = this->rows();
  IdMapping mapping(this->library.get());
  const auto copy = this->library->save(source, mapping);
  EXPECT_NE(copy, source);
  EXPECT_EQ(copy->id(), this->stored->id());
  EXPECT_EQ(copy->library(), this->library);
  EXPECT_EQ(state_of(source), source_state);
  EXPECT_EQ(this->rows(), before);
  EXPECT_EQ(this->entry(mapping, source->id(), other.get()).status, IdMapping::Existing);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(SavingMerged, names_that_differ_in_case_are_two_names) {
  const auto object = this->library->save(named<TypeParam>("alpha"));
  EXPECT_NE(object->id(), this->stored->id());
}

/// The kinds that merge by name and can be renamed.
template <class T>
class SavingClash : public SavingMerged<T> {};

using ClashingKinds = testing::Types<MaterialType, Layer, CustomProperty>;
TYPED_TEST_SUITE(SavingClash, ClashingKinds, KindNames);

TYPED_TEST(SavingClash, an_update_to_a_taken_name_is_not_unique) {
  const auto object = this->library->save(named<TypeParam>("Beta"));
  object->name("Alpha");
  const std::string state = state_of(object);
  const std::string before = this->rows();
  this->reactor.forget();
  const Thrown thrown = thrown_by([&] { this->library->save(object); });
  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "");
  EXPECT_EQ(state_of(object), state);
  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
  object->name("Gamma");
  EXPECT_TRUE(object->save());
}

TYPED_TEST(SavingClash, a_uniqueness_that_no_stored_name_explains_is_not_unique) {
  PlainDatabase(this->path)
      .execute("DELETE FROM " + kind_of<TypeParam>() + " WHERE name <> 'Alpha';" +
               "CREATE UNIQUE INDEX more ON " + kind_of<TypeParam>() + "(length(name))");
  const auto object = named<TypeParam>("Gamma");
  const std::string state = state_of(object);
  const Thrown thrown = thrown_by([&] { this->library->save(object); });
  EXPECT_EQ(thrown, "veldra::ObjectNotUnique");
  EXPECT_EQ(thrown.text, "");
  EXPECT_EQ(state_of(object), state);
  EXPECT_TRUE(this->library->save(named<TypeParam>("Be")));
}

using SavingProperties = LibraryTest;

TEST_F(SavingProperties, a_name_may_stand_once_for_each_kind_of_object) {
  const auto one = library->save(CustomProperty::create("Colour", ObjectType::Material));
  const auto two = library->save(CustomProperty::create("Colour", ObjectType::Composition));
  EXPECT_NE(one->id(), two->id());
  const auto again = library->save(CustomProperty::create("Colour", ObjectType::Composition));
  EXPECT_EQ(again->id(), two->id());
  EXPECT_EQ(again->object_type(), ObjectType::Composition);
}

}  // namespace
}  // namespace veldra_tests
