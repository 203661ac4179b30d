// SPDX-License-Identifier: GPL-2.0-or-later
//
// Where SQLite or the library stops, or changes the way it works: a little less, as much, and a
// little more.

#include "reliability/soak.hpp"
#include "reliability/sweep.hpp"
#include "support/library_test.hpp"

#include <sqlite3.h>
#include <unistd.h>

namespace veldra_tests {

namespace {

class Limits : public LibraryTest {
 protected:
  // Everything about the limit in a long run, and the limit itself in a sample.
  static std::vector<std::size_t> around(std::size_t limit) {
    if (soaking()) return {limit - 1, limit, limit + 1};
    return {limit};
  }

  void save_layer(const std::string& name) { library->save(named<Layer>(name)); }

  void remove_layers() {
    library->purge<Layer>();
    PlainDatabase(path).execute("VACUUM");
  }
};

// Texts.

const std::size_t mebibyte = 1048576;

// SQLite keeps a billion bytes in a row. A row of the index of names has eight beside the name: of
// its header, and the id.
const std::size_t longest_name = 1000000000 - 8;

TEST_F(Limits, texts_of_100_MiB_are_kept) {
  for (const std::size_t size : around(100 * mebibyte)) {
    const std::string text(size, 'x');
    auto material = named<Material>("long");
    material->description(text.c_str());
    library->save(material);
    material.reset();
    EXPECT_TRUE(library->get<Material>("long")->description().utf8() == text) << size;
    library->purge<Material>();
  }
}

TEST_F(Limits, names_of_100_MiB_are_kept_and_found) {
  for (const std::size_t size : around(number_or(10, 100) * mebibyte)) {
    const std::string name(size, 'x');
    save_layer(name);
    const auto layer = library->get<Layer>(name.c_str());
    ASSERT_TRUE(layer) << size;
    EXPECT_TRUE(layer->name().utf8() == name) << size;
    EXPECT_EQ(thrown_by([&] { save_layer(name); }), "");  // the stored one stands for it
    EXPECT_EQ(library->count<Layer>(), 1u);
    remove_layers();
  }
}

bool has_memory_for_the_longest_names() {
  return static_cast<double>(::sysconf(_SC_AVPHYS_PAGES)) *
             static_cast<double>(::sysconf(_SC_PAGESIZE)) >
         16e9;
}

TEST_F(Limits, a_name_is_as_long_as_sqlite_can_keep_and_no_longer) {
  if (!soaking()) GTEST_SKIP() << "takes minutes and 16 GB";
  if (!has_memory_for_the_longest_names()) GTEST_SKIP() << "takes 16 GB";
  save_layer("first");  // whose id takes no byte
  for (const std::size_t size : {longest_name - 1, longest_name, longest_name + 1}) {
    const std::string name(size, 'x');
    const Thrown thrown = thrown_by([&] { save_layer(name); });
    EXPECT_EQ(thrown, size > longest_name ? "odb::sqlite::database_exception" : "") << size;
    EXPECT_EQ(thrown.code, size > longest_name ? SQLITE_TOOBIG : 0) << size;
    EXPECT_EQ(library->count<Layer>(), size > longest_name ? 1u : 2u);
    expect_usable(*library);
    if (size > longest_name) continue;
    const auto layer = library->get<Layer>(name.c_str());
    ASSERT_TRUE(layer) << size;
    EXPECT_TRUE(layer->name().utf8() == name) << size;
    library->remove(layer);
    library->purge<Layer>();
    save_layer("first");
  }
  report_figure("bytes of the longest name", longest_name);
}

// Tags.

std::vector<std::shared_ptr<Tag>> many_tags(std::size_t number) {
  std::vector<std::shared_ptr<Tag>> tags;
  for (std::size_t n = 1; n <= number; ++n) tags.push_back(named<Tag>("tag " + std::to_string(n)));
  return tags;
}

TEST_F(Limits, an_object_has_100000_tags_in_their_order) {
  for (const std::size_t number : around(number_or(10000, 100000))) {
    auto material = named<Material>("tagged");
    material->tags(veldra::toModify) = many_tags(number);
    library->save(material);
    const auto read = library->get<Material>("tagged");
    ASSERT_THAT(read->tags(), SizeIs(number));
    for (std::size_t n = 0; n < number; n += 997) {
      EXPECT_EQ(read->tags()[n]->name(), material->tags()[n]->name());
    }
    EXPECT_EQ(read->tags().back()->name(), material->tags().back()->name());
    library->purge<Material>();
  }
}

// Long lists are put to SQLite in parts of 500.
TEST_F(Limits, criteria_have_any_number_of_tags) {
  auto material = named<Material>("tagged");
  material->addTag(named<Tag>("last"));
  library->save(material);
  for (const std::size_t number : {499, 500, 501, 1000, 1001, 100000}) {
    veldra::MaterialCriteria criteria;
    for (std::size_t n = 1; n != number; ++n) {
      criteria.tags.insert(String(("a" + std::to_string(n)).c_str()));
    }
    EXPECT_EQ(library->count<Material>(criteria), 0u);
    criteria.tags.insert("last");
    std::vector<std::shared_ptr<Material>> found;
    library->get(found, criteria);
    EXPECT_THAT(found, SizeIs(1)) << number;
    found.clear();
    library->search(found, "%", criteria);
    EXPECT_THAT(found, SizeIs(1)) << number;
    EXPECT_EQ(library->count<Material>(criteria), 1u) << number;
  }
}

// Ids.

template <class T>
class IdLimits : public LibraryTest {
 protected:
  // The ids from 1 on; the last of them is that of an object.
  std::set<unsigned> ids_with_one_object(unsigned number) {
    library->purge();
    PlainDatabase database(path);
    database.execute("DELETE FROM sqlite_sequence WHERE name='" + kind_of<T>() + "'");
    put_type_of_materials(database);
    put_named<T>(database, std::to_string(number), "'last'");
    std::set<unsigned> ids;
    for (unsigned id = 1; id <= number; ++id) ids.insert(ids.end(), id);
    return ids;
  }

 private:
  static void put_type_of_materials(PlainDatabase& database) {
    if (veldra::ObjectTraits<T>::type != veldra::ObjectType::Material) return;
    database.execute("INSERT OR IGNORE INTO MaterialType (id, name) VALUES (4, 'Generic')");
  }
};

TYPED_TEST_SUITE(IdLimits, AllKinds, KindNames);

TYPED_TEST(IdLimits, sets_of_600000_ids_are_read_and_copied) {
  std::vector<unsigned> numbers = {499, 500, 501, 1000, 1001, 600000};
  if (soaking()) numbers.insert(numbers.end(), {32766, 32767, 599999, 600001});
  for (const unsigned number : numbers) {
    const auto ids = this->ids_with_one_object(number);
    std::vector<std::shared_ptr<TypeParam>> found;
    this->library->get(found, ids);
    ASSERT_THAT(found, SizeIs(1)) << number;
    EXPECT_EQ(found[0]->id(), number);
    const auto other = Library::create(":memory:", veldra::Unit::Inches, "");
    other->purge();
    other->template copy<TypeParam>(this->library, ids);
    EXPECT_EQ(other->template count<TypeParam>(), 1u) << number;
  }
}

TEST_F(Limits, sets_of_any_number_of_ids_are_removed) {
  const unsigned number = number_or(1001, 100001);
  PlainDatabase(path).execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<" +
      std::to_string(number) + ") INSERT INTO Tag (id, name) SELECT i, 'tag ' || i FROM n");
  std::set<unsigned> ids;
  for (unsigned id = 1; id != number; ++id) ids.insert(ids.end(), id);
  std::map<veldra::ObjectKey, bool> removed;
  library->remove<Tag>(ids, removed);
  EXPECT_THAT(removed, SizeIs(number - 1));
  std::vector<std::shared_ptr<Tag>> left;
  library->get(left);
  ASSERT_THAT(left, SizeIs(1));
  EXPECT_EQ(left[0]->id(), number);
}

// Patterns. SQLite takes no longer ones than 50,000 bytes.

class PatternLimits : public Limits, public testing::WithParamInterface<const char*> {
 protected:
  static constexpr std::size_t longest_pattern = 50000;

  // A name, as long as the pattern that finds it.
  static std::string name_of_bytes(std::size_t bytes) {
    const std::string character = GetParam();
    std::string name(bytes % character.size(), 'x');
    while (name.size() != bytes) name += character;
    return name;
  }

  std::size_t number_found(const std::string& pattern) const {
    std::vector<std::shared_ptr<Layer>> found;
    library->search(found, pattern.c_str());
    return found.size();
  }
};

TEST_P(PatternLimits, patterns_have_up_to_50000_bytes) {
  for (const std::size_t bytes : {longest_pattern - 1, longest_pattern}) {
    const std::string name = name_of_bytes(bytes);
    save_layer(name);
    save_layer("other");
    EXPECT_EQ(number_found(name), 1u) << bytes;
    EXPECT_EQ(number_found(std::string(bytes - 1, '%') + "r"), 1u) << bytes;
    EXPECT_EQ(number_found(std::string(bytes, '%')), 2u) << bytes;
    library->purge<Layer>();
  }
}

TEST_P(PatternLimits, longer_patterns_are_refused_by_every_search) {
  const std::string pattern = name_of_bytes(longest_pattern + 1);
  save_layer("a");
  library->save(full_material("Oak"));
  EXPECT_EQ(thrown_by([&] { number_found(pattern); }), "odb::sqlite::database_exception");
  std::vector<std::shared_ptr<Material>> found;
  veldra::MaterialCriteria criteria;
  criteria.tags = {"Oak tag 1"};
  EXPECT_EQ(thrown_by([&] { library->search(found, pattern.c_str(), criteria); }),
            "odb::sqlite::database_exception");
  EXPECT_THAT(found, testing::IsEmpty());
  expect_usable(*library);
  EXPECT_EQ(number_found("a"), 1u);
}

INSTANTIATE_TEST_SUITE_P(Characters, PatternLimits,
                         testing::Values("a", "\xC3\xA4", "\xF0\x9F\xA7\xB1"));

}  // namespace

}  // namespace veldra_tests
