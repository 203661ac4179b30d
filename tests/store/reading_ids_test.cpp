// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <map>
#include <set>
#include <string>

namespace veldra_tests {
namespace {

using Ids = std::set<unsigned>;

/// What a list of all has.
template <class T>
Ids listed(const Library& library) {
  Ids ids;
  for (const auto& object : all_of<T>(library)) ids.insert(object->id());
  return ids;
}

template <class T>
class IdsOfKind : public LibraryTest {};
TYPED_TEST_SUITE(IdsOfKind, AllKinds, KindNames);

TYPED_TEST(IdsOfKind, are_those_of_a_list) {
  for (const char* name : {"one", "two", "three"}) this->library->save(full<TypeParam>(name));
  this->library->template remove<TypeParam>(this->library->template get<TypeParam>("two")->id());
  const Ids ids = this->library->template ids<TypeParam>();
  EXPECT_GE(ids.size(), 2U);
  EXPECT_EQ(ids, listed<TypeParam>(*this->library));
  EXPECT_EQ(this->library->template ids<TypeParam>({}), ids);
}

TYPED_TEST(IdsOfKind, leave_out_what_no_object_can_have) {
  const Ids before = this->library->template ids<TypeParam>();
  PlainDatabase file(this->path);
  for (const char* id : {"-1", "0", "4294967296"}) {
    put_named<TypeParam>(file, id, "'Nobody " + std::string(id) + "'");
  }
  EXPECT_EQ(this->library->template ids<TypeParam>(), before);
}

template <class T>
class NamesOfKind : public LibraryTest {};
TYPED_TEST_SUITE(NamesOfKind, AllKinds, KindNames);

TYPED_TEST(NamesOfKind, are_those_of_a_list_by_their_ids) {
  for (const char* name : {"one", "two", "Dämmung 🧱"})
    this->library->save(full<TypeParam>(name));
  std::map<unsigned, String> listed;
  for (const auto& object : all_of<TypeParam>(*this->library)) {
    listed.emplace(object->id(), object->name());
  }
  EXPECT_GE(listed.size(), 3U);
  EXPECT_EQ(this->library->template names<TypeParam>(), listed);
}

TYPED_TEST(NamesOfKind, leave_out_what_no_object_can_have) {
  const auto before = this->library->template names<TypeParam>();
  PlainDatabase file(this->path);
  for (const char* id : {"-1", "0", "4294967296"}) {
    put_named<TypeParam>(file, id, "'Nobody " + std::string(id) + "'");
  }
  EXPECT_EQ(this->library->template names<TypeParam>(), before);
}

TEST(IdsOfNothing, are_none) {
  const auto library = Library::create(":memory:", Unit::Millimetres, "");
  EXPECT_THAT(library->ids<Material>(), IsEmpty());
  EXPECT_THAT(library->names<Material>(), IsEmpty());
  EXPECT_THAT(library->unreadable<Material>(), IsEmpty());
}

class SelectedIds : public LibraryTest {};

TEST_F(SelectedIds, are_those_of_the_criteria) {
  library->save(full_material("Oak"));
  library->save(full_material("Beech"));
  MaterialCriteria criteria;
  criteria.tags = {"Oak tag 1"};
  EXPECT_EQ(library->ids<Material>(criteria), Ids{library->get<Material>("Oak")->id()});
  criteria.type = library->get<MaterialType>("Beech type");
  EXPECT_THAT(library->ids<Material>(criteria), IsEmpty());
}

/// A library in which of three materials one cannot be read.
class UnreadableObjects : public LibraryTest {
 protected:
  UnreadableObjects() {
    for (const char* name : {"Oak", "Beech", "Ash"}) library->save(full_material(name));
    library->save(full_composition("Wall"));
  }

  unsigned id_of(const char* name) const { return library->get<Material>(name)->id(); }

  void break_material(const char* name, const std::string& change) {
    beech = id_of(name);
    execute("PRAGMA foreign_keys=OFF; UPDATE Material SET " + change +
            " WHERE id=" + std::to_string(beech));
  }

  unsigned beech = 0;
};

TEST_F(UnreadableObjects, are_none_in_a_sound_library) {
  EXPECT_THAT(library->unreadable<Material>(), IsEmpty());
  EXPECT_THAT(library->unreadable<Composition>(), IsEmpty());
}

TEST_F(UnreadableObjects, refer_to_what_is_not_there) {
  break_material("Beech", "type = 999");
  EXPECT_FALSE(library->get<Material>(beech));
  EXPECT_EQ(library->unreadable<Material>(), Ids{beech});
  EXPECT_THAT(library->ids<Material>(), Contains(beech));
  EXPECT_EQ(library->names<Material>().at(beech), "Beech");
}

TEST_F(UnreadableObjects, have_a_text_that_is_not_utf8) {
  break_material("Beech", "name = CAST(x'ff' AS TEXT)");
  EXPECT_EQ(thrown_by([&] { library->get<Material>(beech); }), "utf8::invalid_utf8");
  EXPECT_EQ(thrown_by([&] { library->names<Material>(); }), "utf8::invalid_utf8");
  EXPECT_EQ(library->unreadable<Material>(), Ids{beech});
  EXPECT_EQ(library->get<Material>("Oak")->name(), String("Oak"));
}

TEST_F(UnreadableObjects, have_an_asset_of_an_unknown_kind) {
  PlainDatabase file(path);
  put_thermal_asset(file, "5");
  break_material("Beech", "thermal_id = 5");
  EXPECT_THAT(library->unreadable<Material>(), IsEmpty());
  execute("UPDATE Asset SET typeid = 'other'");
  EXPECT_EQ(thrown_by([&] { library->get<Material>(beech); }), "odb::no_type_info");
  EXPECT_EQ(library->unreadable<Material>(), Ids{beech});
}

TEST_F(UnreadableObjects, are_those_above_an_unreadable_one_as_well) {
  break_material("Wall core", "type = 999");
  EXPECT_EQ(library->unreadable<Composition>(), library->ids<Composition>());
  EXPECT_THAT(library->unreadable<Tag>(), IsEmpty());
}

TEST_F(UnreadableObjects, cannot_be_told_of_a_table_that_is_gone) {
  execute("DROP TABLE Material_tags");
  EXPECT_EQ(thrown_by([&] { library->unreadable<Material>(); }), "odb::sqlite::database_exception");
}

}  // namespace
}  // namespace veldra_tests
