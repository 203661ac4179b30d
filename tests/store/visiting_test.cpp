// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/library_test.hpp"
#include "support/sanitized.hpp"

#include <sys/resource.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace veldra_tests {
namespace {

constexpr const char* in_transaction = "odb::already_in_transaction";

using Names = std::vector<std::string>;

class Visiting : public LibraryTest {
 protected:
  void put_tags(unsigned number) const {
    execute("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT " +
            std::to_string(number) + ") INSERT INTO Tag (name) SELECT 'tag ' || i FROM n");
  }

  /// Visits the first of some tags.
  void at_the_first(const std::function<void()>& call) const {
    library->for_each<Tag>([&](const std::shared_ptr<Tag>&) {
      call();
      return false;
    });
  }
};

template <class T>
Names visited(const Library& library, const typename CriteriaOf<T>::type& criteria = {}) {
  Names titles;
  EXPECT_TRUE(library.for_each<T>(criteria, [&titles](const std::shared_ptr<T>& object) {
    titles.push_back(values_of(object));
    return true;
  }));
  return titles;
}

template <class T>
Names listed(const Library& library, const typename CriteriaOf<T>::type& criteria = {}) {
  std::vector<std::shared_ptr<T>> objects;
  library.get(objects, criteria);
  Names titles;
  for (const auto& object : objects) titles.push_back(values_of(object));
  return titles;
}

template <class T>
class VisitingKind : public Visiting {};
TYPED_TEST_SUITE(VisitingKind, AllKinds, KindNames);

TYPED_TEST(VisitingKind, shows_what_a_list_has_in_its_order) {
  for (unsigned n = 0; n != 70; ++n) {
    this->library->save(full<TypeParam>(std::to_string(n * 37 % 70)));
  }
  EXPECT_EQ(visited<TypeParam>(*this->library), listed<TypeParam>(*this->library));
  Names without_criteria;
  EXPECT_TRUE(this->library->template for_each<TypeParam>([&](const auto& object) {
    without_criteria.push_back(values_of(object));
    return true;
  }));
  EXPECT_EQ(without_criteria, listed<TypeParam>(*this->library));
}

TEST_F(Visiting, shows_what_the_criteria_select) {
  library->save(full_composition("Wall"));
  MaterialCriteria criteria;
  criteria.tags = {"Wall core tag 1"};
  EXPECT_THAT(visited<Material>(*library, criteria), SizeIs(1));
  EXPECT_EQ(visited<Material>(*library, criteria), listed<Material>(*library, criteria));
}

TEST_F(Visiting, nothing_is_to_the_end) {
  EXPECT_TRUE(library->for_each<Tag>([](const std::shared_ptr<Tag>&) { return false; }));
}

TEST_F(Visiting, goes_over_the_ends_of_the_parts_that_it_reads) {
  for (const unsigned number : {1U, 63U, 64U, 65U, 128U, 129U}) {
    execute("DELETE FROM Tag");
    put_tags(number);
    EXPECT_EQ(visited<Tag>(*library), listed<Tag>(*library)) << number;
  }
}

TEST_F(Visiting, ends_when_it_is_told_to) {
  put_tags(200);
  for (const unsigned last : {1U, 64U, 100U, 200U}) {
    unsigned seen = 0;
    EXPECT_FALSE(
        library->for_each<Tag>([&](const std::shared_ptr<Tag>&) { return ++seen != last; }));
    EXPECT_EQ(seen, last);
  }
  EXPECT_TRUE(library->save(Tag::create("afterwards")));
}

TEST_F(Visiting, the_objects_belong_to_the_library_and_are_the_hosts) {
  library->save(named<Material>("Oak"));
  library->save(named<Material>("Ash"));
  std::vector<std::shared_ptr<Material>> kept;
  library->for_each<Material>([&](const std::shared_ptr<Material>& material) {
    kept.push_back(material);
    return true;
  });
  ASSERT_THAT(kept, SizeIs(2));
  EXPECT_EQ(kept[0]->library(), library);
  kept[0]->name("changed");
  kept[0]->save();
  EXPECT_TRUE(library->get<Material>("changed"));
}

TEST_F(Visiting, leaves_out_what_cannot_be_read_whole) {
  library->save(full_material("Oak"));
  library->save(full_material("Beech"));
  execute("PRAGMA foreign_keys=OFF; UPDATE Material SET type = 999 WHERE name = 'Oak'");
  EXPECT_THAT(visited<Material>(*library), SizeIs(1));
}

TEST_F(Visiting, is_of_one_state) {
  execute("PRAGMA journal_mode = WAL");
  put_tags(200);
  bool written = false;
  std::size_t seen = 0;
  library->for_each<Tag>([&](const std::shared_ptr<Tag>&) {
    if (!written) execute("DELETE FROM Tag WHERE id > 100; INSERT INTO Tag (name) VALUES ('new')");
    written = true;
    ++seen;
    return true;
  });
  EXPECT_EQ(seen, 200U);
  EXPECT_EQ(library->count<Tag>(), 101U);
}

TEST_F(Visiting, what_is_thrown_passes_and_ends_it) {
  put_tags(100);
  unsigned seen = 0;
  EXPECT_EQ(thrown_by([&] {
              library->for_each<Tag>([&](const std::shared_ptr<Tag>&) -> bool {
                if (++seen == 70) throw std::runtime_error("enough");
                return true;
              });
            }),
            "std::runtime_error");
  EXPECT_EQ(seen, 70U);
  EXPECT_TRUE(library->save(Tag::create("afterwards")));
  const Library::Snapshot snapshot(*library);
}

TEST_F(Visiting, the_library_may_be_read_meanwhile) {
  put_tags(70);
  library->save(full_material("Oak"));
  std::size_t pairs = 0;
  library->for_each<Tag>([&](const std::shared_ptr<Tag>& tag) {
    EXPECT_TRUE(library->get<Tag>(tag->id()));
    EXPECT_EQ(library->count<Material>(), 1U);
    library->for_each<Material>([&](const std::shared_ptr<Material>&) { return ++pairs != 0; });
    return true;
  });
  EXPECT_EQ(pairs, library->count<Tag>());
  EXPECT_TRUE(library->save(Tag::create("afterwards")));
}

TEST_F(Visiting, writes_are_refused_meanwhile) {
  put_tags(3);
  const auto other = create("other.lib");
  const std::string before = rows();
  at_the_first([&] {
    const auto changed = library->get<Tag>(1);
    EXPECT_EQ(thrown_by([&] { library->save(veldra::Layer::create("new")); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->remove<Tag>(1); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->remove(changed); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->purge(); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->copyAll(other); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { library->restoreFrom(other->filename(), true); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { Library::Transaction transaction(*library); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { Library::Snapshot snapshot(*library); }), in_transaction);
    other->copyAll(library);
  });
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(other->count<Tag>(), 3U);
  EXPECT_TRUE(library->remove<Tag>(1));
}

TEST_F(Visiting, within_a_transaction_it_sees_what_was_done_and_nothing_is_written_meanwhile) {
  put_tags(3);
  Library::Transaction transaction(*library);
  library->save(Tag::create("fourth"));
  EXPECT_THAT(visited<Tag>(*library), SizeIs(4));
  at_the_first([&] {
    EXPECT_EQ(thrown_by([&] { library->save(Tag::create("fifth")); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { transaction.commit(); }), in_transaction);
    EXPECT_EQ(thrown_by([&] { Library::Snapshot snapshot(*library); }), in_transaction);
  });
  library->save(Tag::create("fifth"));
  transaction.commit();
  EXPECT_EQ(library->count<Tag>(), 5U);
}

TEST_F(Visiting, is_a_part_of_a_snapshot) {
  put_tags(3);
  const Library::Snapshot snapshot(*library);
  EXPECT_THAT(visited<Tag>(*library), SizeIs(3));
  EXPECT_EQ(thrown_by([&] { library->save(Tag::create("new")); }), in_transaction);
}

TEST_F(Visiting, is_possible_within_a_call_of_the_reactor) {
  std::size_t seen = 0;
  reactor.on_saved = [&](Library& self, const ObjectKey&) { seen = visited<Tag>(self).size(); };
  library->save(Tag::create("first"));
  EXPECT_EQ(seen, 1U);
}

TEST_F(Visiting, the_library_may_be_let_go_meanwhile) {
  put_tags(130);
  Library& self = *library;
  unsigned seen = 0;
  EXPECT_TRUE(self.for_each<Tag>([&](const std::shared_ptr<Tag>&) {
    library.reset();
    return ++seen != 0;
  }));
  EXPECT_EQ(seen, 130U);
  EXPECT_EQ(open()->count<Tag>(), 130U);
}

TEST_F(Visiting, can_be_interrupted_from_within) {
  put_tags(100);
  unsigned seen = 0;
  EXPECT_EQ(thrown_by([&] {
              library->for_each<Tag>([&](const std::shared_ptr<Tag>&) {
                if (++seen == 10) library->interrupt();
                return true;
              });
            }),
            "veldra::Interrupted");
  EXPECT_EQ(seen, 10U);
}

/// The memory that this process has, in kibibytes.
[[maybe_unused]] long memory_in_use() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, 6, "VmRSS:") == 0) return std::stol(line.substr(6));
  }
  return 0;
}

#ifndef VELDRA_KEEPS_FREED_MEMORY

TEST_F(Visiting, takes_little_memory_whatever_the_size) {
  put_tags(2);
  visited<Tag>(*library);  // what is made once
  execute("DELETE FROM Tag");
  put_tags(500000);
  const long before = memory_in_use();
  long most = before;
  unsigned seen = 0;
  library->for_each<Tag>([&](const std::shared_ptr<Tag>&) {
    if (++seen % 1000 == 0) most = std::max(most, memory_in_use());
    return true;
  });
  EXPECT_EQ(seen, 500000U);
  EXPECT_LT(most - before, 16 * 1024);
}

#endif

}  // namespace
}  // namespace veldra_tests
