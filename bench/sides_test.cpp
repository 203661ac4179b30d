// SPDX-License-Identifier: GPL-2.0-or-later
#include "measuring.hpp"

#include <gmock/gmock.h>

#include <stdlib.h>

#include <filesystem>

// Whether the sides of a work are compared before they are timed, and whether the plain program
// reads the same in its two ways, also from files that no sample is like.

namespace veldra_bench {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;

/// A side that has read a number.
Side reads(std::uint64_t number) {
  return [number](Digest* digest) {
    if (digest != nullptr) digest->add(number);
  };
}

class Sides : public testing::Test {
 protected:
  Sides() {
    path_ = testing::TempDir() + "sides-XXXXXX";
    if (::mkdtemp(&path_[0]) == nullptr) throw std::runtime_error("no folder " + path_);
  }
  ~Sides() override { std::filesystem::remove_all(path_); }

  Figures measured(const Work& work) {
    Workshop workshop(path_, 50);
    const TimedWork timed = {"work", "", 0, [](const Workshop&) { return 1u; },
                             [work](Workshop&) { return work; }};
    return measure(timed, 1, workshop);
  }

  void expect_refused(const Work& work) {
    EXPECT_THAT([&] { measured(work); },
                ThrowsMessage<std::runtime_error>(StrEq("the sides did not do the same")));
  }

  std::string path_;
};

TEST_F(Sides, that_do_the_same_are_measured) {
  Work work{reads(1), reads(1)};
  work.fewest = work.shared = reads(1);
  work.otherwise = {"other", reads(1)};
  const Figures figures = measured(work);
  EXPECT_TRUE(figures.plain.exists);
  EXPECT_TRUE(figures.fewest.exists);
  EXPECT_TRUE(figures.shared.exists);
  EXPECT_TRUE(figures.otherwise.exists);
  EXPECT_EQ(figures.otherwise_name, "other");
}

TEST_F(Sides, that_are_missing_have_no_figures) {
  const Figures figures = measured({reads(1), nullptr});
  EXPECT_FALSE(figures.plain.exists);
  EXPECT_FALSE(figures.fewest.exists);
  EXPECT_FALSE(figures.shared.exists);
  EXPECT_FALSE(figures.otherwise.exists);
}

TEST_F(Sides, of_which_one_differs_are_not_measured) {
  const Work same{reads(1), reads(1)};
  Work work = same;
  work.plain = reads(2);
  expect_refused(work);
  work = same;
  work.fewest = reads(2);
  expect_refused(work);
  work = same;
  work.shared = reads(2);
  expect_refused(work);
  work = same;
  work.otherwise = {"other", reads(2)};
  expect_refused(work);
}

TEST_F(Sides, may_be_another_work) {
  Work work{reads(1), reads(1)};
  work.otherwise = {"another work", reads(2), false};
  EXPECT_TRUE(measured(work).otherwise.exists);
}

template <class List>
std::uint64_t digest_of(const List& list) {
  Digest digest;
  for (std::size_t i = 0; i != list.size; ++i) add(digest, list.items[i]);
  return digest.value();
}

/// The two ways of the plain program, on a library with assets.
class PlainLists : public Sides {
 protected:
  PlainLists()
      : workshop_(path_, 60), library_(open_plain(workshop_.sample_with_assets().path())) {}

  void change(const char* statement) { plain_execute(library_.get(), statement); }

  void expect_same_materials() {
    plain_materials one_by_one = plain_all_materials(library_.get());
    const std::uint64_t expected = digest_of(one_by_one);
    EXPECT_GT(one_by_one.size, 0u);
    plain_free_materials(&one_by_one);
    for (const plain_sharing sharing : {PLAIN_OWN_COPIES, PLAIN_SHARED}) {
      plain_bulk bulk = plain_bulk_materials(library_.get(), sharing);
      EXPECT_EQ(digest_of(bulk.materials), expected);
      plain_free_bulk(&bulk);
    }
  }

  void expect_same_compositions() {
    plain_compositions one_by_one = plain_all_compositions(library_.get());
    const std::uint64_t expected = digest_of(one_by_one);
    EXPECT_GT(one_by_one.size, 0u);
    plain_free_compositions(&one_by_one);
    for (const plain_sharing sharing : {PLAIN_OWN_COPIES, PLAIN_SHARED}) {
      plain_bulk bulk = plain_bulk_compositions(library_.get(), sharing);
      EXPECT_EQ(digest_of(bulk.compositions), expected);
      plain_free_bulk(&bulk);
    }
  }

  Workshop workshop_;
  PlainLibrary library_;
};

TEST_F(PlainLists, are_the_same_in_both_ways) {
  change("INSERT INTO Asset_tags VALUES (3, 0, 5), (3, 1, 2), (42, 0, 1)");
  expect_same_materials();
  expect_same_compositions();
}

TEST_F(PlainLists, are_in_the_order_of_the_index_when_rows_are_not) {
  change("UPDATE Material_tags SET \"index\"=2-\"index\"");
  change("UPDATE Composition_layers SET \"index\"=10-\"index\"");
  expect_same_materials();
  expect_same_compositions();
}

TEST_F(PlainLists, are_the_same_when_the_rows_of_an_object_lie_apart) {
  change("CREATE TEMP TABLE moved AS SELECT * FROM Material_tags WHERE \"index\"=0");
  change("DELETE FROM Material_tags WHERE \"index\"=0");
  change("INSERT INTO Material_tags SELECT * FROM temp.moved");
  expect_same_materials();
  expect_same_compositions();
}

TEST_F(PlainLists, are_the_same_for_ids_with_wide_gaps) {
  change("PRAGMA foreign_keys=OFF");
  for (const char* table : {"Material_tags", "Material_thicknesses", "Material_custom_values"}) {
    change(
        ("UPDATE " + std::string(table) + " SET object_id=3000000000 WHERE object_id=7").c_str());
  }
  change("UPDATE Composition_layers SET value_material_id=3000000000 WHERE value_material_id=7");
  change("UPDATE Material SET id=3000000000 WHERE id=7");
  expect_same_materials();
  expect_same_compositions();
}

}  // namespace
}  // namespace veldra_bench
