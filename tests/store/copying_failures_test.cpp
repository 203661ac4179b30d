// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/copying_fixture.hpp"

#include <stdexcept>

namespace veldra_tests {
namespace {

constexpr int kReadOnly = 8;
constexpr int kConstraint = 19;
constexpr int kRaisedByTrigger = 1811;

class CopyingFailures : public CopyingTest {
 protected:
  void on_insert_into(const std::string& table, const std::string& statement) {
    PlainDatabase(path).execute("CREATE TRIGGER \"broken\" AFTER INSERT ON \"" + table +
                                "\" BEGIN " + statement + "; END");
  }

  void mend() { PlainDatabase(path).execute("DROP TRIGGER \"broken\""); }

  /// Executes on the source, where plain SQLite checks no references.
  void damage_source(const std::string& statements) {
    PlainDatabase(source_path()).execute(statements);
  }
};

TEST_F(CopyingFailures, a_failing_statement_takes_the_copy_back_and_passes_as_it_is) {
  put(full_composition("Wall"));
  put(full_composition("Roof"));
  on_insert_into("Composition_layers", "SELECT abs(-9223372036854775807 - 1)");
  const std::string before = rows();
  IdMapping mapping = fresh_mapping();

  EXPECT_EQ(thrown_by([&] { library->copyAll(source, mapping); }),
            "odb::sqlite::database_exception");

  EXPECT_EQ(rows(), before);
  mend();
  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "");
  EXPECT_EQ(contents_of(*library), contents_of(*source));
}

TEST_F(CopyingFailures, a_refusal_that_ends_like_a_name_is_no_taken_name) {
  put(named<Material>("Oak"));
  on_insert_into("Material", "SELECT RAISE(ABORT, 'not in this house: Material.name')");
  const std::string before = rows();
  reactor.decision = Library::Reactor::UseExisting;

  const Thrown thrown = thrown_by([&] { library->copyAll(source); });

  EXPECT_EQ(thrown, "odb::sqlite::database_exception");
  EXPECT_EQ(thrown.code, kConstraint);
  EXPECT_EQ(thrown.extended, kRaisedByTrigger);
  EXPECT_THAT(reactor.calls_starting_with("conflict"), IsEmpty());
  EXPECT_EQ(rows(), before);
}

TEST_F(CopyingFailures, a_library_for_reading_fails_with_the_error_of_the_database) {
  const auto oak = put(named<Material>("Oak"));
  library.reset();
  library = Library::open(path.c_str(), true);
  const std::string before = rows();

  for (const auto& copy : std::vector<std::function<void()>>{
           [&] { library->copyAll(source); }, [&] { library->copy(source, {key_of(oak)}); },
           [&] { library->copy<Material>(source, Ids{oak->id()}); }}) {
    const Thrown thrown = thrown_by(copy);
    EXPECT_EQ(thrown, "odb::sqlite::database_exception");
    EXPECT_EQ(thrown.code, kReadOnly);
  }

  EXPECT_EQ(rows(), before);
  EXPECT_EQ(library->count<Material>(), 0u);
}

TEST_F(CopyingFailures, malformed_text_in_the_source_takes_the_copy_back) {
  put(full_material("Oak"));
  put(named<Tag>("bad"));
  damage_source("UPDATE \"Tag\" SET \"name\"=CAST(x'C328' AS TEXT) WHERE \"name\"='bad'");
  const std::string before = rows();

  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "utf8::invalid_utf8");

  EXPECT_EQ(rows(), before);
  damage_source("UPDATE \"Tag\" SET \"name\"='good' WHERE \"name\"=CAST(x'C328' AS TEXT)");
  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "");
  EXPECT_NE(library->get<Tag>("good"), nullptr);
}

TEST_F(CopyingFailures, an_object_that_cannot_be_read_whole_counts_as_not_there) {
  const auto oak = named<Material>("Oak");
  oak->cut_layer(named<Layer>("layer"));
  put(oak);
  const auto wall = named<Composition>("Wall");
  wall->appendLayer({oak, Material::Function::None, 1.0});
  put(wall);
  put(named<Material>("Pine"));
  damage_source("DELETE FROM \"Layer\"");
  IdMapping mapping = fresh_mapping();

  EXPECT_EQ(thrown_by([&] { library->copyAll(source, mapping); }), "");

  EXPECT_EQ(library->get<Material>("Oak"), nullptr);
  EXPECT_EQ(library->get<Composition>("Wall"), nullptr);
  EXPECT_NE(library->get<Material>("Pine"), nullptr);
  EXPECT_FALSE(mapping.has(source_key(oak)));
  EXPECT_FALSE(mapping.has(source_key(wall)));
}

TEST_F(CopyingFailures, an_asset_of_an_unknown_class_fails_the_copy_of_its_material) {
  put(named<Material>("Oak"));
  damage_source(
      "INSERT INTO \"Asset\" VALUES (1, 'veldra::Unheard', 'Steel', '');"
      "INSERT INTO \"StructuralAsset\" VALUES (1, '', 1.0, 1.0, 1.0);"
      "UPDATE \"Material\" SET \"structural_id\"=1");
  const std::string before = rows();

  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "odb::no_type_info");

  EXPECT_EQ(rows(), before);
  EXPECT_EQ(thrown_by([&] { library->save(named<Tag>("afterwards")); }), "");
}

TEST_F(CopyingFailures, what_was_collected_is_told_once_also_after_a_failure) {
  const auto oak = named<Material>("Oak");
  oak->addTag(named<Tag>("one"));
  oak->cut_layer(named<Layer>("layer"));
  put(oak);
  on_insert_into("Material", "SELECT abs(-9223372036854775807 - 1)");

  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "odb::sqlite::database_exception");

  EXPECT_THAT(reactor.calls(),
              ElementsAre("saved Tag 101", "saved Layer 101", "type Tag", "type Layer", "library"));
}

TEST_F(CopyingFailures, an_exception_of_a_notification_reaches_the_caller_and_the_copy_stays) {
  put(named<Tag>("one"));
  reactor.on_type_changed = [](Library&, ObjectType) { throw std::runtime_error("full"); };

  EXPECT_EQ(thrown_by([&] { library->copyAll(source); }), "std::runtime_error");

  EXPECT_EQ(library->count<Tag>(), 1u);
}

class CopyingAssets : public CopyingTest {
 protected:
  CopyingAssets() {
    {
      PlainDatabase database(source_path());
      put_structural_asset(database, "1");
      put_thermal_asset(database, "2");
      put_row(database, "Tag", {{"id", "50"}, {"name", "'of the asset'"}});
      put_row(database, "Asset_tags", {{"object_id", "1"}, {"index", "0"}, {"tag_id", "50"}});
    }
    const auto oak = named<Material>("Oak");
    put(oak);
    PlainDatabase(source_path())
        .execute("UPDATE \"Material\" SET \"structural_id\"=1, \"thermal_id\"=2");
    material = source->get<Material>("Oak");
  }

  std::shared_ptr<Material> material;
};

TEST_F(CopyingAssets, references_to_assets_are_dropped) {
  library->copy<Material>(source, Ids{material->id()});

  const auto twin = library->get<Material>("Oak");
  EXPECT_EQ(twin->structuralAsset(), nullptr);
  EXPECT_EQ(twin->thermalAsset(), nullptr);
  PlainDatabase database(path);
  EXPECT_EQ(database.value("SELECT count(*) FROM \"Asset\""), "0");
  EXPECT_EQ(database.value("SELECT count(*) FROM \"StructuralAsset\""), "0");
  EXPECT_EQ(database.value("SELECT count(*) FROM \"ThermalAsset\""), "0");
  EXPECT_EQ(database.value("SELECT count(*) FROM \"Asset_tags\""), "0");
  EXPECT_EQ(library->get<Tag>("of the asset"), nullptr);
}

TEST_F(CopyingAssets, assets_of_the_same_id_in_the_destination_are_not_taken) {
  {
    PlainDatabase database(path);
    put_structural_asset(database, "1");
    put_thermal_asset(database, "2");
  }

  library->copyAll(source);

  EXPECT_EQ(library->get<Material>("Oak")->structuralAsset(), nullptr);
  EXPECT_EQ(library->get<Material>("Oak")->thermalAsset(), nullptr);
}

TEST_F(CopyingAssets, the_source_keeps_its_references) {
  const std::string before = state_of(material);
  const FileState file(source_path());
  ASSERT_NE(material->structuralAsset(), nullptr);

  library->copyAll(source);
  library->purge();
  library->save(material);

  EXPECT_EQ(state_of(material), before);
  EXPECT_TRUE(file == FileState(source_path()));
  EXPECT_NE(source->get<Material>("Oak")->thermalAsset(), nullptr);
}

TEST_F(CopyingAssets, they_are_in_no_mapping) {
  IdMapping mapping = fresh_mapping();
  library->copyAll(source, mapping);
  for (const auto& entry : mapping) EXPECT_NE(entry.first.key.type, veldra::ObjectType::Asset);
}

}  // namespace
}  // namespace veldra_tests
