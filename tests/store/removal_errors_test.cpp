// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/removal_fixture.hpp"
#include "support/catalogues.hpp"

#include <chrono>

namespace veldra_tests {
namespace {

class RemovalErrors : public RemovalTest {};

TEST_F(RemovalErrors, the_texts_are_those_of_the_exceptions) {
  const auto used = referenced<Tag>("used");

  EXPECT_EQ(thrown_by([&] { library->remove(used); }).text,
            "Object is still referenced by other object");
  EXPECT_EQ(thrown_by([&] { library->remove<Tag>(99u); }).text, "Object not found");
  on_delete_from("Tag", kOverflow);
  EXPECT_EQ(thrown_by([&] { library->remove(used); }).text, "Unkown error");
  EXPECT_EQ(thrown_by([&] { library->remove(used); }).code, 1) << "not the code of the failure";
  mend();
  reopen_for_reading();
  EXPECT_EQ(thrown_by([&] { library->remove<Tag>(1u); }).text, "Library is read only");
}

TEST_F(RemovalErrors, a_file_that_another_connection_holds_is_waited_for) {
  const auto tag = stored<Tag>("one");
  Thrown thrown;
  std::chrono::steady_clock::duration waited{};
  {
    PlainDatabase other(path);
    other.execute("BEGIN EXCLUSIVE");
    const auto start = std::chrono::steady_clock::now();
    thrown = thrown_by([&] { library->remove(tag); });
    waited = std::chrono::steady_clock::now() - start;
  }

  EXPECT_EQ(thrown, "veldra::UnknownError");
  EXPECT_EQ(thrown.code, 5) << "not told that others hold the file";
  EXPECT_GE(waited, std::chrono::milliseconds(4500));
  EXPECT_LT(waited, std::chrono::seconds(12));
  EXPECT_EQ(tag->library(), library);
  EXPECT_TRUE(library->remove(tag));
}

TEST_F(RemovalErrors, the_ids_of_a_purge_that_cannot_be_read_are_an_unknown_error) {
  PlainDatabase(path).execute("ALTER TABLE \"Tag\" RENAME TO \"Tag_elsewhere\"");
  EXPECT_EQ(thrown_by([&] { library->purge<Tag>(); }), "veldra::UnknownError");
}

TEST_F(RemovalErrors, a_set_stops_at_a_failure_and_what_went_before_stays_removed) {
  const auto one = stored<Tag>("one");
  const auto two = stored<Tag>("two");
  PlainDatabase(path).execute(
      "CREATE TRIGGER \"broken\" BEFORE DELETE ON \"Tag\" WHEN OLD.\"name\"='two' BEGIN " +
      std::string(kOverflow) + "; END");
  Removed result;

  EXPECT_EQ(thrown_by([&] {
              library->remove<Tag>(std::set<unsigned>{one->id(), two->id()}, result);
            }),
            "veldra::UnknownError");

  EXPECT_THAT(result, ElementsAre(Pair(key_of(one), true)));
  EXPECT_EQ(library->get<Tag>("one"), nullptr);
  mend();
  EXPECT_TRUE(library->remove(two));
}

TEST_F(RemovalErrors, a_failing_side_table_takes_the_whole_removal_back) {
  library->save(full_material("Oak"));
  const auto oak = library->get<Material>("Oak");
  on_delete_from("Material_thicknesses", kOverflow);
  const std::string before = rows();

  EXPECT_EQ(thrown_by([&] { library->remove(oak); }), "veldra::UnknownError");

  EXPECT_EQ(rows(), before);
  mend();
  EXPECT_TRUE(library->remove(oak));
  EXPECT_EQ(damage(path), "");
}

TEST_F(RemovalErrors, an_object_of_another_handle_on_the_same_file_is_not_found) {
  const auto tag = stored<Tag>("one");
  const auto second = Library::open(path.c_str(), false);
  const std::string before = rows();

  EXPECT_EQ(thrown_by([&] { second->remove(tag); }), "veldra::ObjectNotFound");

  EXPECT_EQ(rows(), before);
  EXPECT_EQ(tag->library(), library);
  EXPECT_TRUE(second->remove<Tag>(tag->id()));
  EXPECT_EQ(thrown_by([&] { library->remove(tag); }), "veldra::ObjectNotFound");
}

TEST_F(RemovalErrors, many_refused_removals_leave_the_handle_usable) {
  const auto used = referenced<Tag>("used");
  for (int i = 0; i != 20; ++i) {
    ASSERT_EQ(thrown_by([&] { library->remove(used); }), "veldra::ObjectInUse");
    ASSERT_EQ(thrown_by([&] { library->remove<Tag>(99u); }), "veldra::ObjectNotFound");
    expect_usable();
  }
}

/// A file that was made before there were drawing layers and then brought to the current version:
/// its keys to layers are checked at once and not at the commit.
class RemovalInOldFile : public RemovalTest {
 protected:
  RemovalInOldFile() {
    make_old_file(old_path, 150301);
    library = Library::open(old_path.c_str(), false);
    library->setReactor(&reactor);
  }

  /// A layer that a material and a composition refer to.
  std::shared_ptr<Layer> used_layer() {
    const auto oak = named<Material>("Oak");
    oak->cut_layer(named<Layer>("used"));
    library->save(oak);
    const auto wall = named<Composition>("Wall");
    wall->entity_layer(oak->cut_layer());
    library->save(wall);
    return library->get<Layer>("used");
  }

  const std::string old_path = folder / "old.lib";
};

TEST_F(RemovalInOldFile, a_layer_in_use_stays) {
  ASSERT_EQ(catalogue(old_path), migrated_catalogue(150301));
  const auto layer = used_layer();
  const std::string before = dump(old_path);
  Removed result;

  EXPECT_EQ(thrown_by([&] { library->remove(layer); }), "veldra::ObjectInUse");
  EXPECT_EQ(thrown_by([&] { library->remove<Layer>(layer->id()); }), "veldra::ObjectInUse");
  library->remove<Layer>(std::set<unsigned>{layer->id()}, result);

  EXPECT_THAT(result, ElementsAre(Pair(key_of(layer), false)));
  EXPECT_EQ(layer->library(), library);
  EXPECT_EQ(dump(old_path), before);
}

TEST_F(RemovalInOldFile, the_handle_is_usable_after_a_refusal) {
  const auto layer = used_layer();
  ASSERT_EQ(thrown_by([&] { library->remove(layer); }), "veldra::ObjectInUse");

  EXPECT_EQ(thrown_by([&] { library->save(named<Tag>("afterwards")); }), "");
  EXPECT_EQ(thrown_by([&] { PlainDatabase(old_path).execute("DELETE FROM \"Tag\""); }), "");
}

TEST_F(RemovalInOldFile, a_layer_goes_once_its_owners_are_gone) {
  const auto layer = used_layer();
  library->remove(library->get<Material>("Oak"));
  ASSERT_EQ(thrown_by([&] { library->remove(layer); }), "veldra::ObjectInUse");
  library->remove(library->get<Composition>("Wall"));

  EXPECT_TRUE(library->remove(layer));

  EXPECT_EQ(damage(old_path), "");
}

TEST_F(RemovalInOldFile, a_purge_keeps_what_is_in_use_and_takes_the_rest) {
  const auto layer = used_layer();
  library->save(named<Layer>("free"));
  Removed result;

  library->purge<Layer>(result);
  EXPECT_THAT(result, ElementsAre(Pair(key_of(layer), false), Pair(key_of<Layer>(2), true)));

  library->purge();
  EXPECT_EQ(library->count<Layer>(), 0u);
  EXPECT_EQ(library->count<Material>(), 0u);
}

TEST_F(RemovalInOldFile, a_refusal_amid_the_statement_is_not_told) {
  const auto layer = used_layer();
  listen();

  EXPECT_EQ(thrown_by([&] { library->remove(layer); }), "veldra::ObjectInUse");

  EXPECT_THAT(reactor.calls(), ElementsAre("may remove Layer 1"));
}

}  // namespace
}  // namespace veldra_tests
