// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/copying_fixture.hpp"

namespace veldra_tests {
namespace {

template <class T>
class CopyingOfKind : public CopyingTest {
 protected:
  /// Checks that the copy is there, has the values and stands in the mapping.
  void expect_copied(const IdMapping& mapping, const std::shared_ptr<T>& original) {
    const auto twin = twin_of(mapping, original);
    ASSERT_NE(twin, nullptr);
    EXPECT_EQ(values_of(twin), values_of(original));
    EXPECT_EQ(entry_of(mapping, original).status, IdMapping::Inserted);
    EXPECT_NE(twin->id(), original->id());
    EXPECT_EQ(damage(path), "");
  }
};
TYPED_TEST_SUITE(CopyingOfKind, AllKinds, KindNames);

TYPED_TEST(CopyingOfKind, objects_are_copied_by_their_ids) {
  const auto one = this->put(full<TypeParam>("one"));
  const auto two = this->put(full<TypeParam>("two"));
  const auto left = this->put(full<TypeParam>("left"));
  IdMapping mapping = this->fresh_mapping();

  this->library->template copy<TypeParam>(this->source, Ids{one->id(), two->id()}, mapping);

  this->expect_copied(mapping, one);
  this->expect_copied(mapping, two);
  EXPECT_FALSE(mapping.has(this->source_key(left)));
  EXPECT_EQ(this->library->template get<TypeParam>("left"), nullptr);
}

TYPED_TEST(CopyingOfKind, objects_are_copied_by_their_ids_without_a_mapping) {
  const auto one = this->put(full<TypeParam>("one"));
  this->put(full<TypeParam>("left"));

  this->library->template copy<TypeParam>(this->source, Ids{one->id()});

  EXPECT_EQ(values_of(this->library->template get<TypeParam>("one")), values_of(one));
  EXPECT_EQ(this->library->template get<TypeParam>("left"), nullptr);
}

TYPED_TEST(CopyingOfKind, the_keys_are_those_at_the_call) {
  const auto one = this->put(full<TypeParam>("one"));
  const auto two = this->put(full<TypeParam>("two"));
  const auto left = this->put(full<TypeParam>("left"));
  const auto tag = this->put(named<veldra::Tag>("a tag that is added while it runs"));
  Keys keys{key_of(one), key_of(two)};
  this->reactor.on_saved = [&](Library&, const ObjectKey&) { keys = {key_of(left), key_of(tag)}; };
  IdMapping mapping = this->fresh_mapping();

  this->library->copy(this->source, keys, mapping);

  this->reactor.on_saved = nullptr;
  this->expect_copied(mapping, one);
  this->expect_copied(mapping, two);
  EXPECT_FALSE(mapping.has(this->source_key(left)));
  EXPECT_FALSE(mapping.has(this->source_key(tag)));
}

TYPED_TEST(CopyingOfKind, objects_are_copied_by_their_keys) {
  const auto one = this->put(full<TypeParam>("one"));
  const auto left = this->put(full<TypeParam>("left"));
  IdMapping mapping = this->fresh_mapping();

  this->library->copy(this->source, Keys{key_of(one)}, mapping);

  this->expect_copied(mapping, one);
  EXPECT_FALSE(mapping.has(this->source_key(left)));
  EXPECT_EQ(this->library->template get<TypeParam>("left"), nullptr);
}

TYPED_TEST(CopyingOfKind, objects_are_copied_by_their_keys_without_a_mapping) {
  const auto one = this->put(full<TypeParam>("one"));
  this->put(full<TypeParam>("left"));

  this->library->copy(this->source, Keys{key_of(one)});

  EXPECT_EQ(values_of(this->library->template get<TypeParam>("one")), values_of(one));
  EXPECT_EQ(this->library->template get<TypeParam>("left"), nullptr);
}

TYPED_TEST(CopyingOfKind, all_objects_are_copied) {
  const auto one = this->put(full<TypeParam>("one"));
  const auto two = this->put(full<TypeParam>("two"));
  IdMapping mapping = this->fresh_mapping();

  this->library->copyAll(this->source, mapping);

  this->expect_copied(mapping, one);
  this->expect_copied(mapping, two);
  EXPECT_EQ(contents_of(*this->library), contents_of(*this->source));
}

TYPED_TEST(CopyingOfKind, all_objects_are_copied_without_a_mapping) {
  this->put(full<TypeParam>("one"));
  this->put(full<TypeParam>("two"));

  this->library->copyAll(this->source);

  EXPECT_EQ(contents_of(*this->library), contents_of(*this->source));
}

TYPED_TEST(CopyingOfKind, a_copy_outlives_the_handles) {
  this->put(full<TypeParam>("one"));
  this->library->copyAll(this->source);

  this->reopen();

  EXPECT_EQ(contents_of(*this->library), contents_of(*this->source));
}

TYPED_TEST(CopyingOfKind, ids_that_the_source_does_not_have_are_skipped) {
  const auto one = this->put(full<TypeParam>("one"));
  const unsigned missing = one->id() + 1000;
  const ObjectKey missing_key(veldra::ObjectTraits<TypeParam>::type, missing);
  IdMapping mapping = this->fresh_mapping();

  this->library->template copy<TypeParam>(this->source, Ids{0, one->id(), missing}, mapping);
  this->library->copy(this->source, Keys{missing_key}, mapping);

  this->expect_copied(mapping, one);
  EXPECT_FALSE(mapping.has({missing_key, this->source.get()}));
}

TYPED_TEST(CopyingOfKind, no_ids_copy_nothing) {
  this->put(full<TypeParam>("one"));
  const std::string before = this->rows();
  IdMapping mapping = this->fresh_mapping();

  this->library->template copy<TypeParam>(this->source, Ids(), mapping);
  this->library->copy(this->source, Keys(), mapping);

  EXPECT_EQ(this->rows(), before);
  EXPECT_EQ(mapping.size(), 0u);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(CopyingOfKind, no_source_copies_nothing) {
  const std::shared_ptr<const Library> none;
  const ObjectKey key(veldra::ObjectTraits<TypeParam>::type, 1);
  const std::string before = this->rows();
  IdMapping mapping = this->fresh_mapping();

  this->library->template copy<TypeParam>(none, Ids{1}, mapping);
  this->library->template copy<TypeParam>(none, Ids{1});
  this->library->copy(none, Keys{key}, mapping);
  this->library->copy(none, Keys{key});
  this->library->copyAll(none, mapping);
  this->library->copyAll(none);

  EXPECT_EQ(this->rows(), before);
  EXPECT_EQ(mapping.size(), 0u);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(CopyingOfKind, keys_of_this_very_library_stand_for_themselves) {
  const auto own = full<TypeParam>("own");
  this->library->save(own);
  this->reactor.forget();
  const std::string before = this->rows();
  IdMapping mapping = this->fresh_mapping();
  const ObjectKey missing(veldra::ObjectTraits<TypeParam>::type, 4711);

  this->library->copy(this->library, Keys{key_of(own), missing}, mapping);

  ASSERT_EQ(mapping.size(), 2u);
  for (const ObjectKey& key : {key_of(own), missing}) {
    IdMapping::Value value;
    ASSERT_TRUE(mapping.compute({key, this->library.get()}, value));
    EXPECT_EQ(value.id, key.id);
    EXPECT_EQ(value.status, IdMapping::Existing);
  }
  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(CopyingOfKind, the_other_forms_do_nothing_with_this_very_library) {
  const auto own = full<TypeParam>("own");
  this->library->save(own);
  this->reactor.forget();
  const std::string before = this->rows();
  IdMapping mapping = this->fresh_mapping();

  this->library->template copy<TypeParam>(this->library, Ids{own->id()}, mapping);
  this->library->template copy<TypeParam>(this->library, Ids{own->id()});
  this->library->copyAll(this->library, mapping);
  this->library->copyAll(this->library);
  this->library->copy(this->library, Keys{key_of(own)});

  EXPECT_EQ(mapping.size(), 0u);
  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(CopyingOfKind, the_source_is_only_read) {
  const auto one = this->put(full<TypeParam>("one"));
  const auto read = this->source->template get<TypeParam>("one");
  RecordingReactor of_source;
  this->source->setReactor(&of_source);
  const std::string one_before = state_of(one), read_before = state_of(read);
  const FileState before(this->source_path());

  this->library->template copy<TypeParam>(this->source, Ids{one->id()});
  this->library->purge();
  this->library->copy(this->source, Keys{key_of(one)});
  this->library->purge();
  this->library->copyAll(this->source);

  EXPECT_TRUE(before == FileState(this->source_path()));
  EXPECT_EQ(state_of(one), one_before);
  EXPECT_EQ(state_of(read), read_before);
  EXPECT_THAT(of_source.calls(), IsEmpty());
}

TYPED_TEST(CopyingOfKind, a_second_copy_with_the_same_mapping_writes_nothing) {
  const auto one = this->put(full<TypeParam>("one"));
  IdMapping mapping = this->fresh_mapping();
  this->library->copyAll(this->source, mapping);
  const IdMapping::Value entry = this->entry_of(mapping, one);
  const std::size_t size = mapping.size();
  const std::string before = this->rows();
  this->reactor.forget();

  this->library->copyAll(this->source, mapping);
  this->library->template copy<TypeParam>(this->source, Ids{one->id()}, mapping);
  this->library->copy(this->source, Keys{key_of(one)}, mapping);

  EXPECT_EQ(this->rows(), before);
  EXPECT_EQ(mapping.size(), size);
  EXPECT_EQ(this->entry_of(mapping, one).id, entry.id);
  EXPECT_EQ(this->entry_of(mapping, one).status, IdMapping::Inserted);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(CopyingOfKind, each_new_object_is_told_and_then_the_kinds_and_the_library_once) {
  const auto one = this->put(named<TypeParam>("one"));
  const auto two = this->put(named<TypeParam>("two"));

  this->library->template copy<TypeParam>(this->source, Ids{one->id(), two->id()});

  const std::string kind = kind_of<TypeParam>();
  EXPECT_THAT(this->reactor.calls(),
              testing::ElementsAre("saved " + kind + " 101", "saved " + kind + " 102",
                                   "type " + kind, "library"));
}

template <class T>
class CopyingOfNamed : public CopyingTest {};
using NamedKinds =
    testing::Types<veldra::Tag, veldra::MaterialType, veldra::Layer, veldra::CustomProperty>;
TYPED_TEST_SUITE(CopyingOfNamed, NamedKinds, KindNames);

TYPED_TEST(CopyingOfNamed, an_object_of_a_taken_name_becomes_the_one_that_is_there) {
  const auto original = this->put(named<TypeParam>("same"));
  const auto own = named<TypeParam>("same");
  this->library->save(own);
  this->reactor.forget();
  const std::string before = this->rows();
  IdMapping mapping = this->fresh_mapping();

  this->library->template copy<TypeParam>(this->source, Ids{original->id()}, mapping);

  EXPECT_EQ(this->entry_of(mapping, original).id, own->id());
  EXPECT_EQ(this->entry_of(mapping, original).status, IdMapping::Existing);
  EXPECT_EQ(mapping.size(), 1u);
  EXPECT_EQ(this->rows(), before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(CopyingOfNamed, names_that_differ_in_case_are_two_objects) {
  this->library->save(named<TypeParam>("same"));
  const auto original = this->put(named<TypeParam>("Same"));
  IdMapping mapping = this->fresh_mapping();

  this->library->template copy<TypeParam>(this->source, Ids{original->id()}, mapping);

  EXPECT_EQ(this->entry_of(mapping, original).status, IdMapping::Inserted);
  EXPECT_NE(this->library->template get<TypeParam>("same"), nullptr);
  EXPECT_NE(this->library->template get<TypeParam>("Same"), nullptr);
}

class CopyingOfProperties : public CopyingTest {};

TEST_F(CopyingOfProperties, a_name_is_taken_for_its_kind_of_object_only) {
  library->save(composition_property("Fire"));
  const auto original = put(named<veldra::CustomProperty>("Fire"));
  IdMapping mapping = fresh_mapping();

  library->copy<veldra::CustomProperty>(source, Ids{original->id()}, mapping);

  EXPECT_EQ(entry_of(mapping, original).status, IdMapping::Inserted);
  EXPECT_EQ(library->count<veldra::CustomProperty>(), 2u);
  EXPECT_EQ(twin_of(mapping, original)->object_type(), veldra::ObjectType::Material);
}

}  // namespace
}  // namespace veldra_tests
