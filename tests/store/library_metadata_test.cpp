// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/database.hpp"
#include "support/file_state.hpp"
#include "support/library_fixture.hpp"
#include "support/processes.hpp"
#include "support/thrown.hpp"

namespace veldra_tests {
namespace {

class LibraryMetadata : public LibraryFixture {
 protected:
  void SetUp() override { create(Unit::Inches, "abc"); }

  Rows stored() const {
    return PlainDatabase(path).query("SELECT id, guid, unit, locale, region FROM Meta");
  }

  void expect_stored(const std::string& locale, const std::string& region) const {
    EXPECT_THAT(stored(), ElementsAre(ElementsAre("0", "'25289ef0-812b-50f0-9943-5518cb168039'",
                                                  "0", "'" + locale + "'", "'" + region + "'")));
  }
};

TEST_F(LibraryMetadata, the_locale_is_written_at_once) {
  const auto library = open();
  library->locale("de-CH");
  EXPECT_EQ(library->locale().utf8(), "de-CH");
  expect_stored("de-CH", "");
}

TEST_F(LibraryMetadata, the_region_is_written_at_once) {
  const auto library = open();
  library->region("Zürich 石");
  EXPECT_EQ(library->region().utf8(), "Zürich 石");
  expect_stored("", "Zürich 石");
}

TEST_F(LibraryMetadata, values_survive_the_handle) {
  const auto library = open();
  library->locale("de-CH");
  library->region("Alps");
  const auto other = open();
  EXPECT_EQ(other->locale().utf8(), "de-CH");
  EXPECT_EQ(other->region().utf8(), "Alps");
}

TEST_F(LibraryMetadata, values_can_be_emptied) {
  const auto library = open();
  library->locale("de-CH");
  library->locale(String());
  EXPECT_TRUE(library->locale().empty());
  expect_stored("", "");
}

TEST_F(LibraryMetadata, a_value_may_be_set_to_what_the_getter_gives) {
  const auto library = open();
  library->locale("de-CH");
  library->locale(library->locale());
  library->region(library->locale());
  EXPECT_EQ(library->locale().utf8(), "de-CH");
  expect_stored("de-CH", "de-CH");
}

TEST_F(LibraryMetadata, a_setter_leaves_no_transaction_open) {
  const auto library = open();
  library->locale("de-CH");
  PlainDatabase(path).execute("BEGIN EXCLUSIVE; COMMIT");
  EXPECT_FALSE(file_exists(path + "-journal"));
}

TEST_F(LibraryMetadata, other_handles_see_a_change_when_they_are_opened_again) {
  const auto writer = open();
  const auto reader = open();
  writer->locale("de-CH");
  EXPECT_TRUE(reader->locale().empty());
  EXPECT_EQ(open()->locale().utf8(), "de-CH");
}

// The whole row is written from what the handle knows.
TEST_F(LibraryMetadata, the_last_of_two_handles_decides_about_the_whole_row) {
  const auto first = open();
  const auto second = open();
  first->locale("de-CH");
  second->region("Alps");
  expect_stored("", "Alps");
}

// Reading only.

TEST_F(LibraryMetadata, a_handle_for_reading_only_says_so) {
  EXPECT_TRUE(open_read_only()->readOnly());
  EXPECT_FALSE(open()->readOnly());
  EXPECT_FALSE(create()->readOnly());
}

TEST_F(LibraryMetadata, a_handle_for_reading_only_knows_its_values) {
  open()->locale("de-CH");
  const auto library = open_read_only();
  EXPECT_EQ(library->filename().utf8(), path);
  EXPECT_EQ(library->guid().utf8(), "25289ef0-812b-50f0-9943-5518cb168039");
  EXPECT_EQ(library->unit(), Unit::Inches);
  EXPECT_EQ(library->locale().utf8(), "de-CH");
  EXPECT_EQ(library->version(), 150302u);
}

TEST_F(LibraryMetadata, a_refused_value_stays_in_the_handle_and_not_in_the_file) {
  open()->locale("de-CH");
  const FileState before(path);
  const auto library = open_read_only();
  EXPECT_EQ(thrown_by([&] { library->locale("fr-CH"); }).type, "veldra::LibraryReadOnly");
  EXPECT_EQ(thrown_by([&] { library->region("Jura"); }).type, "veldra::LibraryReadOnly");
  EXPECT_EQ(library->locale().utf8(), "fr-CH");
  EXPECT_EQ(library->region().utf8(), "Jura");
  EXPECT_TRUE(before == FileState(path));
  expect_stored("de-CH", "");
}

TEST_F(LibraryMetadata, a_handle_for_reading_only_reads_on_after_a_refusal) {
  const auto library = open_read_only();
  EXPECT_EQ(thrown_by([&] { library->locale("fr-CH"); }).type, "veldra::LibraryReadOnly");
  EXPECT_EQ(library->count<veldra::MaterialType>(), 13u);
}

TEST_F(LibraryMetadata, a_handle_for_reading_only_stands_beside_one_that_writes) {
  const auto reader = open_read_only();
  const auto writer = open();
  writer->locale("de-CH");
  EXPECT_EQ(reader->count<veldra::MaterialType>(), 13u);
  EXPECT_EQ(thrown_by([&] { reader->locale("fr-CH"); }).type, "veldra::LibraryReadOnly");
  expect_stored("de-CH", "");
}

TEST_F(LibraryMetadata, a_file_that_can_only_be_read_is_read_only) {
  protect_the_file();
  const FileState before(path);
  const std::string result = run_without_privileges([&]() -> std::string {
    const auto library = open();
    if (!library->readOnly()) return "not read only";
    if (library->count<veldra::MaterialType>() != 13) return "not readable";
    const Thrown thrown = thrown_by([&] { library->locale("fr-CH"); });
    return thrown.type + " " + library->locale().utf8();
  });
  EXPECT_EQ(result, "veldra::LibraryReadOnly fr-CH");
  EXPECT_TRUE(before == FileState(path));
}

TEST_F(LibraryMetadata, a_file_that_can_only_be_read_opens_in_every_way) {
  protect_the_file();
  const std::string result = run_without_privileges([&]() -> std::string {
    return create()->readOnly() && open_read_only()->readOnly() ? "read only" : "writable";
  });
  EXPECT_EQ(result, "read only");
}

// Other failures of a setter.

TEST_F(LibraryMetadata, a_constraint_that_is_violated_counts_as_in_use) {
  const auto library = open();
  PlainDatabase(path).execute(
      "CREATE TRIGGER Refuse BEFORE UPDATE ON Meta BEGIN SELECT RAISE(ABORT, 'refused'); END");
  EXPECT_EQ(thrown_by([&] { library->locale("de-CH"); }).type, "veldra::ObjectInUse");
  EXPECT_EQ(library->locale().utf8(), "de-CH");
  expect_stored("", "");
}

TEST_F(LibraryMetadata, a_missing_row_counts_as_not_found) {
  const auto library = open();
  PlainDatabase(path).execute("DELETE FROM Meta");
  EXPECT_EQ(thrown_by([&] { library->region("Alps"); }).type, "veldra::ObjectNotFound");
  EXPECT_EQ(library->region().utf8(), "Alps");
}

TEST_F(LibraryMetadata, any_other_failure_is_unknown) {
  const auto library = open();
  PlainDatabase(path).execute("ALTER TABLE Meta RENAME TO Elsewhere");
  EXPECT_EQ(thrown_by([&] { library->locale("de-CH"); }).type, "veldra::UnknownError");
  EXPECT_EQ(library->locale().utf8(), "de-CH");
}

TEST_F(LibraryMetadata, the_handle_works_again_once_the_cause_is_mended) {
  const auto library = open();
  PlainDatabase(path).execute("ALTER TABLE Meta RENAME TO Elsewhere");
  EXPECT_EQ(thrown_by([&] { library->locale("de-CH"); }).type, "veldra::UnknownError");
  PlainDatabase(path).execute("ALTER TABLE Elsewhere RENAME TO Meta");
  library->region("Alps");
  expect_stored("de-CH", "Alps");
}

TEST_F(LibraryMetadata, a_text_that_is_not_well_formed_is_not_written) {
  const auto library = open();
  const unsigned short text[] = {'d', 0xD800, 0};
  EXPECT_EQ(thrown_by([&] { library->locale(text); }).type, "utf8::invalid_utf16");
  expect_stored("", "");
  library->locale("de-CH");
  expect_stored("de-CH", "");
}

}  // namespace
}  // namespace veldra_tests
