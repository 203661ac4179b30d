// SPDX-License-Identifier: GPL-2.0-or-later
//
// Files of both older versions with many rows: brought to the current version in full or not at
// all, with every row.

#include "reliability/files_that_fail.hpp"
#include "reliability/soak.hpp"
#include "support/catalogues.hpp"
#include "support/contents.hpp"
#include "support/library_fixture.hpp"

namespace veldra_tests {

namespace {

const unsigned many = 10000;
const unsigned sample = 3;

// Gives a file of an older version so many rows more in each table that grows, with references to
// one another.
void add_rows(const std::string& path, unsigned number) {
  PlainDatabase database(path);
  database.execute(
      "PRAGMA synchronous=OFF; BEGIN;"
      "CREATE TEMP TABLE n AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
      "SELECT i+1 FROM n WHERE i < " +
      std::to_string(number) + ") SELECT i, i+1000 AS id FROM n");
  database.execute(R"sql(
INSERT INTO Tag (id, name) SELECT id, 'tag ' || i FROM n;
INSERT INTO MaterialType (id, name) SELECT id, 'type ' || i FROM n;
CREATE TEMP TABLE material AS SELECT * FROM Material WHERE id = 2;
UPDATE material SET code = NULL, structural_id = NULL, thermal_id = NULL;
CREATE TEMP TABLE composition AS SELECT * FROM Composition WHERE id = 1;
)sql");
  for (const char* table : {"Material", "Composition"}) {
    const std::string name = table;
    const std::string columns =
        database.value("SELECT group_concat('\"' || name || '\"') FROM pragma_table_info('" + name +
                       "') WHERE name NOT IN ('id', 'name')");
    const std::string list = columns.substr(1, columns.size() - 2);
    database.execute("INSERT INTO main." + name + " (id, name, " + list + ") SELECT n.id, '" +
                     name + " ' || i, " + list + " FROM n, temp." + name);
  }
  database.execute(R"sql(
INSERT INTO Material_tags SELECT id, 0, id FROM n;
INSERT INTO Material_thicknesses SELECT id, i * 0.5 FROM n;
INSERT INTO Composition_tags SELECT id, 0, id FROM n;
INSERT INTO Composition_layers SELECT id, 0, id, 0, i * 0.25 FROM n;
COMMIT)sql");
}

String numbered(const std::string& what, unsigned number) {
  return (what + " " + std::to_string(number)).c_str();
}

class LargeMigration : public LibraryFixture, public WithParamInterface<int> {
 protected:
  void make_file(unsigned number) const {
    make_old_file(path, GetParam());
    fill_old_file(path, GetParam());
    add_rows(path, number);
  }

  static Start start() {
    return GetParam() == 150201 ? Start::Version150201 : Start::Version150301;
  }
};

TEST_P(LargeMigration, keeps_every_row_and_every_object) {
  make_file(many);
  const std::string before = rows();

  const auto library = open_read_only();

  EXPECT_TRUE(rows() == migrated_dump(before));
  EXPECT_EQ(catalogue(path), migrated_catalogue(GetParam()));
  EXPECT_EQ(damage(path), "");
  EXPECT_THAT(all_of<Material>(*library), testing::SizeIs(many + 2));
  EXPECT_THAT(all_of<Composition>(*library), testing::SizeIs(many + 2));
  const auto last = library->get<Composition>(numbered("Composition", many));
  ASSERT_TRUE(last);
  EXPECT_EQ(last->tags()[0]->name(), numbered("tag", many));
  EXPECT_EQ(last->layers()[0].thickness(), many * 0.25);
  const auto material = last->layers()[0].material();
  EXPECT_EQ(material->name(), numbered("Material", many));
  EXPECT_THAT(material->thicknesses(), testing::ElementsAre(many * 0.5));
  report_figure("rows of each large table of a migrated file", many);
}

TEST_P(LargeMigration, is_done_in_full_or_not_at_all) {
  make_file(number_or(1000, many));
  const std::string bytes = read_file(path);
  const Operation migrate = {
      "migrate many rows", Operation::Kind::Making, start(),
      [&](Scene& scene) {
        write_file(scene.path(), bytes);
        scene.text = scene.name();
      },
      [](Scene& scene) { scene.library = Library::open(scene.text, false); }};
  sweep_files({migrate}, FaultVfs::Trouble::Error, FaultVfs::Repetition::Persistent, sample,
              "errors while many rows are migrated");
  sweep_files({migrate}, FaultVfs::Trouble::DiskFull, FaultVfs::Repetition::Persistent, sample,
              "full disks while many rows are migrated");
}

INSTANTIATE_TEST_SUITE_P(Versions, LargeMigration, testing::Values(150201, 150301));

}  // namespace

}  // namespace veldra_tests
