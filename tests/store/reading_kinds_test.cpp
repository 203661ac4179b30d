// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"

#include <algorithm>
#include <set>
#include <vector>

namespace veldra_tests {
namespace {

/// What the six kinds have in common when they are read. The file has the objects 101 "Alpha",
/// 102 "Beta" and 103 "Gamma" of the kind, and no others.
template <class T>
class ReadingKinds : public LibraryTest {
 protected:
  using Objects = std::vector<std::shared_ptr<T>>;
  using Criteria = typename veldra::CriteriaOf<T>::type;

  ReadingKinds() : file(path) {
    if (std::is_same<T, MaterialType>::value) file.execute("DELETE FROM MaterialType");
    put("101", "'Alpha'");
    put("102", "'Beta'");
    put("103", "'Gamma'");
  }

  void put(const std::string& id, const std::string& name) { put_named<T>(file, id, name); }

  const Library& reader() const { return *library; }

  Objects all() const {
    Objects objects;
    reader().get(objects);
    return objects;
  }

  Objects with_ids(const std::set<unsigned>& ids) const {
    Objects objects;
    reader().get(objects, ids);
    return objects;
  }

  Objects found(const String& text) const {
    Objects objects;
    reader().search(objects, text);
    return objects;
  }

  static std::vector<std::string> names(const Objects& objects) {
    std::vector<std::string> names;
    for (const auto& object : objects) names.push_back(object->name().utf8());
    return names;
  }

  /// The names in the order in which plain SQLite gives the ids; of properties in their own order.
  std::vector<std::string> names_by_query(const std::string& condition) {
    const std::string table = "\"" + kind_of<T>() + "\"";
    std::vector<std::string> names;
    const bool by_name = std::is_same<T, CustomProperty>::value;
    for (const Row& row :
         file.query("SELECT " + table + ".\"id\" FROM " + table + " WHERE " + condition +
                    (by_name ? " ORDER BY " + table + ".\"name\"" : ""))) {
      names.push_back(file.value("SELECT name FROM " + table + " WHERE id=" + row[0]));
      names.back() = names.back().substr(1, names.back().size() - 2);
    }
    return names;
  }

  PlainDatabase file;
};

TYPED_TEST_SUITE(ReadingKinds, AllKinds, KindNames);

TYPED_TEST(ReadingKinds, an_object_is_found_by_id) {
  const auto object = this->reader().template get<TypeParam>(102);
  ASSERT_TRUE(object);
  EXPECT_EQ(object->id(), 102u);
  EXPECT_EQ(object->name(), String("Beta"));
}

TYPED_TEST(ReadingKinds, an_object_is_found_by_name) {
  const auto object = this->reader().template get<TypeParam>(String("Gamma"));
  ASSERT_TRUE(object);
  EXPECT_EQ(object->id(), 103u);
  EXPECT_EQ(object->name(), String("Gamma"));
}

TYPED_TEST(ReadingKinds, an_object_that_was_read_is_clean_and_bound) {
  for (const auto& object :
       {this->library->template get<TypeParam>(101),
        this->library->template get<TypeParam>(String("Alpha")), this->all().at(0),
        this->with_ids({101}).at(0), this->found("Alpha").at(0)}) {
    EXPECT_EQ(object->library(), this->library);
    EXPECT_FALSE(object->isDirty());
  }
}

TYPED_TEST(ReadingKinds, what_is_not_there_is_null) {
  EXPECT_FALSE(this->reader().template get<TypeParam>(99));
  EXPECT_FALSE(this->reader().template get<TypeParam>(4294967295u));
  EXPECT_FALSE(this->reader().template get<TypeParam>(String("Delta")));
}

TYPED_TEST(ReadingKinds, id_0_and_the_empty_name_are_null_even_where_such_a_row_is) {
  this->put("0", "'Zero'");
  this->put("104", "''");
  EXPECT_FALSE(this->reader().template get<TypeParam>(0));
  EXPECT_FALSE(this->reader().template get<TypeParam>(String()));
  EXPECT_FALSE(this->reader().template get<TypeParam>(String("")));
}

TYPED_TEST(ReadingKinds, id_0_is_in_no_list) {
  this->put("0", "'Alpine'");
  EXPECT_THAT(this->names(this->all()), UnorderedElementsAre("Alpha", "Beta", "Gamma"));
  EXPECT_THAT(this->names(this->found("Al%")), ElementsAre("Alpha"));
  EXPECT_THAT(this->names(this->with_ids({0, 101})), ElementsAre("Alpha"));
}

TYPED_TEST(ReadingKinds, a_name_is_compared_exactly) {
  EXPECT_FALSE(this->reader().template get<TypeParam>(String("alpha")));
  EXPECT_FALSE(this->reader().template get<TypeParam>(String("Alpha ")));
  EXPECT_FALSE(this->reader().template get<TypeParam>(String("Al%")));
}

TYPED_TEST(ReadingKinds, any_text_can_be_a_name) {
  unsigned id = 200;
  for (const std::string& name :
       {std::string("O'Neil's \"best\""), std::string("100 % _"), std::string("; DROP TABLE Tag"),
        std::string("Gl\xC3\xA4tte"), std::string("\xF0\x9F\xA7\xB1 brick"), std::string("\n\t"),
        std::string("\xEF\xBF\xBF"), std::string(100000, 'x')}) {
    this->put(std::to_string(++id), quoted(name));
    const auto object = this->reader().template get<TypeParam>(String(name.c_str()));
    ASSERT_TRUE(object) << name.substr(0, 100);
    EXPECT_EQ(object->id(), id);
    EXPECT_EQ(object->name().utf8(), name);
  }
}

TYPED_TEST(ReadingKinds, the_largest_id_is_an_id_as_any_other) {
  this->put("4294967295", "'Last'");
  const auto object = this->reader().template get<TypeParam>(4294967295u);
  ASSERT_TRUE(object);
  EXPECT_EQ(object->id(), 4294967295u);
  EXPECT_EQ(this->names(this->with_ids({4294967295u})), std::vector<std::string>{"Last"});
}

TYPED_TEST(ReadingKinds, an_id_set_gives_what_is_there_and_skips_the_rest) {
  EXPECT_THAT(this->names(this->with_ids({1, 101, 99, 103, 4294967295u})),
              UnorderedElementsAre("Alpha", "Gamma"));
  EXPECT_THAT(this->with_ids({98, 99}), IsEmpty());
  EXPECT_THAT(this->with_ids({}), IsEmpty());
}

TYPED_TEST(ReadingKinds, an_id_set_can_be_of_any_size) {
  std::set<unsigned> ids;
  for (unsigned id = 1; id <= 100000; ++id) ids.insert(ids.end(), id);
  EXPECT_THAT(this->names(this->with_ids(ids)), UnorderedElementsAre("Alpha", "Beta", "Gamma"));
}

TYPED_TEST(ReadingKinds, all_objects_are_listed) {
  EXPECT_THAT(this->names(this->all()), UnorderedElementsAre("Alpha", "Beta", "Gamma"));
}

TYPED_TEST(ReadingKinds, a_record_of_defaults_selects_all) {
  typename TestFixture::Objects objects;
  this->reader().get(objects, typename TestFixture::Criteria());
  EXPECT_THAT(this->names(objects), UnorderedElementsAre("Alpha", "Beta", "Gamma"));
  objects.clear();
  this->reader().search(objects, "%a%", typename TestFixture::Criteria());
  EXPECT_THAT(this->names(objects), UnorderedElementsAre("Alpha", "Beta", "Gamma"));
  EXPECT_EQ(this->reader().template count<TypeParam>(typename TestFixture::Criteria()), 3u);
}

TYPED_TEST(ReadingKinds, objects_are_counted) {
  EXPECT_EQ(this->reader().template count<TypeParam>(), 3u);
  this->put("104", "'Delta'");
  EXPECT_EQ(this->reader().template count<TypeParam>(), 4u);
}

TYPED_TEST(ReadingKinds, an_empty_kind_lists_nothing_and_counts_0) {
  this->file.execute("DELETE FROM " + kind_of<TypeParam>());
  EXPECT_THAT(this->all(), IsEmpty());
  EXPECT_THAT(this->found("%"), IsEmpty());
  EXPECT_EQ(this->reader().template count<TypeParam>(), 0u);
}

TYPED_TEST(ReadingKinds, lists_append_and_never_clear) {
  typename TestFixture::Objects objects = {nullptr};
  this->reader().get(objects, {101u});
  this->reader().get(objects);
  this->reader().get(objects, typename TestFixture::Criteria());
  this->reader().search(objects, "Beta");
  this->reader().search(objects, "Gamma", typename TestFixture::Criteria());
  ASSERT_EQ(objects.size(), 1u + 1u + 3u + 3u + 1u + 1u);
  EXPECT_FALSE(objects[0]);
  EXPECT_EQ(objects[1]->name(), String("Alpha"));
  EXPECT_EQ(objects[8]->name(), String("Beta"));
  EXPECT_EQ(objects[9]->name(), String("Gamma"));
}

TYPED_TEST(ReadingKinds, lists_come_in_the_order_of_the_database) {
  this->put("50", "'Omega'");
  this->put("60", "'Aleph'");
  this->put("300", "'Beth'");
  EXPECT_EQ(this->names(this->all()), this->names_by_query("true"));
  EXPECT_EQ(this->names(this->with_ids({50, 60, 101, 300})),
            this->names_by_query("id IN (50, 60, 101, 300)"));
  EXPECT_EQ(this->names(this->found("%e%")), this->names_by_query("name LIKE '%e%'"));
}

TYPED_TEST(ReadingKinds, a_search_takes_the_text_as_the_pattern) {
  EXPECT_THAT(this->names(this->found("%am%")), ElementsAre("Gamma"));
  EXPECT_THAT(this->names(this->found("%A%")), UnorderedElementsAre("Alpha", "Beta", "Gamma"));
  EXPECT_THAT(this->names(this->found("b%")), ElementsAre("Beta"));
  EXPECT_THAT(this->names(this->found("____")), ElementsAre("Beta"));
  EXPECT_THAT(this->names(this->found("BETA")), ElementsAre("Beta"));
  EXPECT_THAT(this->found("Bet"), IsEmpty());
  EXPECT_THAT(this->found(" Beta"), IsEmpty());
}

TYPED_TEST(ReadingKinds, a_search_for_the_empty_text_finds_nothing) {
  this->put("104", "''");
  EXPECT_THAT(this->found(String()), IsEmpty());
  EXPECT_THAT(this->found(""), IsEmpty());
  typename TestFixture::Objects objects;
  this->reader().search(objects, "", typename TestFixture::Criteria());
  EXPECT_THAT(objects, IsEmpty());
}

TYPED_TEST(ReadingKinds, nothing_in_a_search_text_is_escaped) {
  this->put("201", quoted("50% wool"));
  this->put("202", quoted("50 kg wool"));
  this->put("203", quoted("back\\slash"));
  this->put("204", quoted("it's"));
  this->put("205", quoted("say \"so\""));
  EXPECT_THAT(this->names(this->found("50% wool")), UnorderedElementsAre("50% wool", "50 kg wool"));
  EXPECT_THAT(this->names(this->found("50_ wool")), ElementsAre("50% wool"));
  EXPECT_THAT(this->names(this->found("back\\slash")), ElementsAre("back\\slash"));
  EXPECT_THAT(this->names(this->found("%'s")), ElementsAre("it's"));
  EXPECT_THAT(this->names(this->found("%\"so\"")), ElementsAre("say \"so\""));
}

TYPED_TEST(ReadingKinds, only_ascii_letters_match_in_either_case) {
  this->put("201", quoted("GL\xC3\x84TTE"));
  EXPECT_THAT(this->names(this->found("gl\xC3\x84tte")), ElementsAre("GL\xC3\x84TTE"));
  EXPECT_THAT(this->found("gl\xC3\xA4tte"), IsEmpty());
}

TYPED_TEST(ReadingKinds, one_character_of_a_pattern_stands_for_a_whole_astral_character) {
  this->put("201", quoted("\xF0\x9F\xA7\xB1"));
  EXPECT_THAT(this->names(this->found("_")), ElementsAre("\xF0\x9F\xA7\xB1"));
  EXPECT_THAT(this->found("__"), IsEmpty());
}

TYPED_TEST(ReadingKinds, a_pattern_that_the_database_refuses_harms_nothing) {
  typename TestFixture::Objects objects = {nullptr};
  const String pattern(std::string(60000, 'a').c_str());
  EXPECT_EQ(thrown_by([&] { this->reader().search(objects, pattern); }),
            "odb::sqlite::database_exception");
  EXPECT_EQ(objects.size(), 1u);
  EXPECT_EQ(this->all().size(), 3u);
}

TYPED_TEST(ReadingKinds, two_reads_give_two_objects) {
  const auto first = this->reader().template get<TypeParam>(101);
  const auto second = this->reader().template get<TypeParam>(101);
  const auto third = this->reader().template get<TypeParam>(String("Alpha"));
  const auto fourth = this->with_ids({101}).at(0);
  EXPECT_EQ((std::set<TypeParam*>{first.get(), second.get(), third.get(), fourth.get()}).size(),
            4u);
  EXPECT_TRUE(*first == *second);
  EXPECT_EQ(values_of(first), values_of(second));
  EXPECT_EQ(values_of(first), values_of(third));
  EXPECT_EQ(values_of(first), values_of(fourth));
}

TYPED_TEST(ReadingKinds, an_object_that_was_read_stays_as_it_was_read) {
  const auto object = this->reader().template get<TypeParam>(101);
  this->file.execute("UPDATE " + kind_of<TypeParam>() + " SET name='New' WHERE id=101");
  EXPECT_EQ(object->name(), String("Alpha"));
  EXPECT_EQ(this->reader().template get<TypeParam>(101)->name(), String("New"));
}

TYPED_TEST(ReadingKinds, reading_writes_nothing_and_notifies_of_nothing) {
  const std::string before = read_file(this->path);
  this->reader().template get<TypeParam>(101);
  this->reader().template get<TypeParam>(String("Beta"));
  this->all();
  this->with_ids({101, 99});
  this->found("%a%");
  this->reader().template count<TypeParam>();
  EXPECT_TRUE(read_file(this->path) == before);
  EXPECT_THAT(this->reactor.calls(), IsEmpty());
}

TYPED_TEST(ReadingKinds, a_library_for_reading_only_reads) {
  this->library.reset();
  this->library = Library::open(this->path.c_str(), true);
  EXPECT_EQ(this->reader().template get<TypeParam>(101)->name(), String("Alpha"));
  EXPECT_THAT(this->names(this->all()), UnorderedElementsAre("Alpha", "Beta", "Gamma"));
  EXPECT_THAT(this->names(this->found("%e%")), ElementsAre("Beta"));
  EXPECT_EQ(this->reader().template count<TypeParam>(), 3u);
}

TYPED_TEST(ReadingKinds, a_name_that_is_not_utf8_raises_and_leaves_the_list_as_it_was) {
  this->put("104", "CAST(x'C328' AS TEXT)");
  typename TestFixture::Objects objects = {nullptr};
  EXPECT_EQ(thrown_by([&] { this->reader().get(objects); }), "utf8::invalid_utf8");
  EXPECT_EQ(thrown_by([&] { this->reader().get(objects, {101u, 104u}); }), "utf8::invalid_utf8");
  EXPECT_EQ(thrown_by([&] { this->reader().search(objects, "%"); }), "utf8::invalid_utf8");
  EXPECT_EQ(thrown_by([&] { this->reader().template get<TypeParam>(104); }), "utf8::invalid_utf8");
  EXPECT_EQ(objects.size(), 1u);
}

TYPED_TEST(ReadingKinds, a_name_that_is_not_utf8_does_not_disturb_other_reads) {
  this->put("104", "CAST(x'FF' AS TEXT)");
  EXPECT_EQ(thrown_by([&] { this->reader().template get<TypeParam>(104); }), "utf8::invalid_utf8");
  EXPECT_EQ(this->reader().template get<TypeParam>(101)->name(), String("Alpha"));
  EXPECT_THAT(this->names(this->with_ids({101, 102})), UnorderedElementsAre("Alpha", "Beta"));
  EXPECT_EQ(this->reader().template count<TypeParam>(), 4u);
}

TYPED_TEST(ReadingKinds, a_row_whose_id_is_no_id_is_never_taken_for_another_object) {
  this->put("4294967397", "'Beyond'");  // 2^32 + 101
  this->put("-4294967195", "'Below'");  // 101 - 2^32
  this->put("-1", "'Negative'");
  EXPECT_EQ(this->reader().template get<TypeParam>(101)->name(), String("Alpha"));
  EXPECT_FALSE(this->reader().template get<TypeParam>(4294967295u));
  EXPECT_FALSE(this->reader().template get<TypeParam>(String("Beyond")));
  EXPECT_FALSE(this->reader().template get<TypeParam>(String("Negative")));
  EXPECT_THAT(this->names(this->with_ids({101, 4294967295u})), ElementsAre("Alpha"));
  EXPECT_THAT(this->names(this->all()), UnorderedElementsAre("Alpha", "Beta", "Gamma"));
  EXPECT_THAT(this->names(this->found("Be%")), ElementsAre("Beta"));
}

}  // namespace
}  // namespace veldra_tests
