#include "store/removal_fixture.hpp"

#include <chrono>

namespace veldra_tests {
namespace {

using testing::ElementsAre;
using testing::Pair;
using veldra::Composition;
using veldra::Layer;
using veldra::Library;
using veldra::Material;
using veldra::MaterialType;
using veldra::Tag;
using veldra::Unit;

class RemovalErrors : public RemovalTest {};

TEST_F(RemovalErrors, the_texts_are_those_of_the_exceptions) {
  const auto used = referenced<Tag>("used");

  EXPECT_EQ(thrown_by([&] { library_->remove(used); }).text,
            "Object is still referenced by other object");
  EXPECT_EQ(thrown_by([&] { library_->remove<Tag>(99u); }).text, "Object not found");
  on_delete_from("Tag", kOverflow);
  EXPECT_EQ(thrown_by([&] { library_->remove(used); }).text, "Unkown error");
  mend();
  reopen(true);
  EXPECT_EQ(thrown_by([&] { library_->remove<Tag>(1u); }).text, "Library is read only");
}

TEST_F(RemovalErrors, a_file_that_another_connection_holds_is_waited_for) {
  const auto tag = stored<Tag>("one");
  Thrown thrown;
  std::chrono::steady_clock::duration waited{};
  {
    PlainDatabase other(path());
    other.execute("BEGIN EXCLUSIVE");
    const auto start = std::chrono::steady_clock::now();
    thrown = thrown_by([&] { library_->remove(tag); });
    waited = std::chrono::steady_clock::now() - start;
  }

  EXPECT_EQ(thrown, "veldra::UnknownError");
  EXPECT_GE(waited, std::chrono::milliseconds(4500));
  EXPECT_LT(waited, std::chrono::seconds(12));
  EXPECT_EQ(tag->library(), library_);
  EXPECT_TRUE(library_->remove(tag));
}

TEST_F(RemovalErrors, the_ids_of_a_purge_that_cannot_be_read_are_an_unknown_error) {
  PlainDatabase(path()).execute("ALTER TABLE \"Tag\" RENAME TO \"Tag_elsewhere\"");
  EXPECT_EQ(thrown_by([&] { library_->purge<Tag>(); }), "veldra::UnknownError");
}

TEST_F(RemovalErrors, a_set_stops_at_a_failure_and_what_went_before_stays_removed) {
  const auto one = stored<Tag>("one");
  const auto two = stored<Tag>("two");
  PlainDatabase(path()).execute(
      "CREATE TRIGGER \"broken\" BEFORE DELETE ON \"Tag\" WHEN OLD.\"name\"='two' BEGIN " +
      std::string(kOverflow) + "; END");
  Removed result;

  EXPECT_EQ(thrown_by([&] {
              library_->remove<Tag>(std::set<unsigned>{one->id(), two->id()}, result);
            }),
            "veldra::UnknownError");

  EXPECT_THAT(result, ElementsAre(Pair(key_of(one), true)));
  EXPECT_EQ(library_->get<Tag>("one"), nullptr);
  mend();
  EXPECT_TRUE(library_->remove(two));
}

TEST_F(RemovalErrors, a_failing_side_table_takes_the_whole_removal_back) {
  library_->save(full_material("Oak"));
  const auto oak = library_->get<Material>("Oak");
  on_delete_from("Material_thicknesses", kOverflow);
  const std::string before = rows();

  EXPECT_EQ(thrown_by([&] { library_->remove(oak); }), "veldra::UnknownError");

  EXPECT_EQ(rows(), before);
  mend();
  EXPECT_TRUE(library_->remove(oak));
  EXPECT_EQ(damage(path()), "");
}

TEST_F(RemovalErrors, many_refused_removals_leave_the_handle_usable) {
  const auto used = referenced<Tag>("used");
  for (int i = 0; i != 20; ++i) {
    ASSERT_EQ(thrown_by([&] { library_->remove(used); }), "veldra::ObjectInUse");
    ASSERT_EQ(thrown_by([&] { library_->remove<Tag>(99u); }), "veldra::ObjectNotFound");
    expect_usable();
  }
}

void erase(std::string& text, const std::string& part) {
  const std::size_t place = text.find(part);
  ASSERT_NE(place, std::string::npos) << part;
  text.erase(place, part.size());
}

/// A file as it was before there were drawing layers, with one material and one composition.
class RemovalInOldFile : public RemovalTest {
 protected:
  RemovalInOldFile() {
    make_old_file();
    library_ = Library::open(old_path().c_str(), false);
  }

  std::string old_path() const { return folder_ / "old.lib"; }

  void make_old_file() {
    const std::string meta =
        "INSERT INTO \"Meta\" VALUES (0, '" + library_->guid().utf8() + "', 1, '', '');";
    PlainDatabase old(old_path());
    for (const Row& row : PlainDatabase(path()).query(
             "SELECT sql FROM sqlite_master WHERE sql IS NOT NULL AND tbl_name NOT IN "
             "('Layer', 'sqlite_sequence') ORDER BY rowid")) {
      old.execute(without_layers(row[0].substr(1, row[0].size() - 2)));
    }
    old.execute("INSERT INTO \"schema_version\" VALUES ('', 150301, 0);" + meta);
  }

  static std::string without_layers(std::string statement) {
    const std::string reference =
        "    REFERENCES \"Layer\" (\"id\")\n"
        "    DEFERRABLE INITIALLY DEFERRED";
    for (const std::string column : {"cut_layer", "entity_layer"}) {
      if (statement.find("\"" + column + "\"") == std::string::npos) continue;
      erase(statement, "  \"" + column + "\" INTEGER NULL,\n");
      const std::string key =
          "  CONSTRAINT \"" + column + "_fk\"\n    FOREIGN KEY (\"" + column + "\")\n" + reference;
      const bool last = statement.find(key + ",\n") == std::string::npos;
      erase(statement, last ? ",\n" + key : key + ",\n");
    }
    return statement;
  }

  /// A layer that a material and a composition refer to.
  std::shared_ptr<Layer> used_layer() {
    const auto oak = named<Material>("Oak");
    oak->cut_layer(named<Layer>("used"));
    library_->save(oak);
    const auto wall = named<Composition>("Wall");
    wall->entity_layer(oak->cut_layer());
    library_->save(wall);
    return library_->get<Layer>("used");
  }

  void expect_immediate_keys() {
    ASSERT_EQ(PlainDatabase(old_path()).value("SELECT \"version\" FROM \"schema_version\""),
              "150302");
    ASSERT_NE(PlainDatabase(old_path())
                  .value("SELECT sql FROM sqlite_master WHERE name='Material'")
                  .find("\"cut_layer\" INTEGER NULL CONSTRAINT \"cut_layer_fk\" REFERENCES"),
              std::string::npos);
  }
};

TEST_F(RemovalInOldFile, a_layer_in_use_stays) {
  expect_immediate_keys();
  const auto layer = used_layer();
  const std::string before = dump(old_path());
  Removed result;

  EXPECT_EQ(thrown_by([&] { library_->remove(layer); }), "veldra::ObjectInUse");
  EXPECT_EQ(thrown_by([&] { library_->remove<Layer>(layer->id()); }), "veldra::ObjectInUse");
  library_->remove<Layer>(std::set<unsigned>{layer->id()}, result);

  EXPECT_THAT(result, ElementsAre(Pair(key_of(layer), false)));
  EXPECT_EQ(layer->library(), library_);
  EXPECT_EQ(dump(old_path()), before);
}

TEST_F(RemovalInOldFile, the_handle_is_usable_after_a_refusal) {
  const auto layer = used_layer();
  ASSERT_EQ(thrown_by([&] { library_->remove(layer); }), "veldra::ObjectInUse");

  EXPECT_EQ(thrown_by([&] { library_->save(named<Tag>("afterwards")); }), "");
  EXPECT_EQ(thrown_by([&] { PlainDatabase(old_path()).execute("DELETE FROM \"Tag\""); }), "");
}

TEST_F(RemovalInOldFile, a_layer_goes_once_its_owners_are_gone) {
  const auto layer = used_layer();
  library_->remove(library_->get<Material>("Oak"));
  ASSERT_EQ(thrown_by([&] { library_->remove(layer); }), "veldra::ObjectInUse");
  library_->remove(library_->get<Composition>("Wall"));

  EXPECT_TRUE(library_->remove(layer));

  EXPECT_EQ(damage(old_path()), "");
}

TEST_F(RemovalInOldFile, a_purge_keeps_what_is_in_use_and_takes_the_rest) {
  const auto layer = used_layer();
  library_->save(named<Layer>("free"));
  Removed result;

  library_->purge<Layer>(result);
  EXPECT_THAT(result, ElementsAre(Pair(key_of(layer), false), Pair(key_of<Layer>(2), true)));

  library_->purge();
  EXPECT_EQ(library_->count<Layer>(), 0u);
  EXPECT_EQ(library_->count<Material>(), 0u);
}

TEST_F(RemovalInOldFile, a_refusal_amid_the_statement_is_not_told) {
  const auto layer = used_layer();
  listen();

  EXPECT_EQ(thrown_by([&] { library_->remove(layer); }), "veldra::ObjectInUse");

  EXPECT_THAT(reactor_.calls, ElementsAre("may remove Layer 1"));
}

}  // namespace
}  // namespace veldra_tests
