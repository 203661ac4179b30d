// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/database.hpp"
#include "support/library_fixture.hpp"
#include "support/processes.hpp"
#include "support/thrown.hpp"

#include <functional>

namespace veldra_tests {
namespace {

const std::vector<std::string> default_types = {
    "Ceramic", "Concrete", "Earth",   "Generic", "Glass",   "Liquid", "Masonry",
    "Metal",   "Paint",    "Plastic", "Stone",   "Textile", "Wood"};

class LibraryCreation : public LibraryFixture {
 protected:
  std::vector<std::string> type_names() const {
    std::vector<std::string> names;
    PlainDatabase database(path);
    for (const Row& row : database.query("SELECT name FROM MaterialType ORDER BY id")) {
      names.push_back(row[0].substr(1, row[0].size() - 2));
    }
    return names;
  }
};

TEST_F(LibraryCreation, makes_the_file) {
  const auto library = create();
  ASSERT_NE(library, nullptr);
  EXPECT_TRUE(file_exists(path));
}

TEST_F(LibraryCreation, gives_a_handle_that_knows_its_values) {
  const auto library = create(Unit::Inches, "abc");
  EXPECT_EQ(library->filename().utf8(), path);
  EXPECT_EQ(library->guid().utf8(), "25289ef0-812b-50f0-9943-5518cb168039");
  EXPECT_EQ(library->unit(), Unit::Inches);
  EXPECT_TRUE(library->locale().empty());
  EXPECT_TRUE(library->region().empty());
  EXPECT_EQ(library->version(), 150302u);
  EXPECT_FALSE(library->readOnly());
}

TEST_F(LibraryCreation, gives_a_handle_that_can_share_itself) {
  const auto library = create();
  EXPECT_EQ(library->shared_from_this(), library);
}

TEST_F(LibraryCreation, stores_one_row_of_metadata) {
  create(Unit::Inches, "abc");
  EXPECT_THAT(
      PlainDatabase(path).query("SELECT id, guid, unit, locale, region FROM Meta"),
      ElementsAre(ElementsAre("0", "'25289ef0-812b-50f0-9943-5518cb168039'", "0", "''", "''")));
}

TEST_F(LibraryCreation, stores_the_unit_as_a_number) {
  create(Unit::Millimetres);
  EXPECT_EQ(PlainDatabase(path).value("SELECT unit FROM Meta"), "1");
}

TEST_F(LibraryCreation, keeps_a_unit_that_only_the_host_knows) {
  const auto library = create(static_cast<Unit>(7));
  EXPECT_EQ(library->unit(), static_cast<Unit>(7));
  EXPECT_EQ(PlainDatabase(path).value("SELECT unit FROM Meta"), "7");
  EXPECT_EQ(open()->unit(), static_cast<Unit>(7));
}

TEST_F(LibraryCreation, opens_a_library_that_is_there_as_it_is) {
  create(Unit::Inches, "abc")->region("Alps");
  const auto library = create(Unit::Millimetres, "other");
  EXPECT_EQ(library->guid().utf8(), "25289ef0-812b-50f0-9943-5518cb168039");
  EXPECT_EQ(library->unit(), Unit::Inches);
  EXPECT_EQ(library->region().utf8(), "Alps");
  EXPECT_EQ(type_names(), default_types);
}

TEST_F(LibraryCreation, fills_an_empty_file_with_what_was_asked_for) {
  write_file(path, "");
  const auto library = create(Unit::Inches, "abc");
  EXPECT_EQ(library->unit(), Unit::Inches);
  EXPECT_EQ(library->guid().utf8(), "25289ef0-812b-50f0-9943-5518cb168039");
}

TEST_F(LibraryCreation, opening_an_empty_file_fills_it_with_defaults) {
  write_file(path, "");
  const auto library = open();
  EXPECT_EQ(library->unit(), Unit::Millimetres);
  EXPECT_TRUE(library->locale().empty());
  EXPECT_TRUE(library->region().empty());
  EXPECT_EQ(type_names(), default_types);
}

TEST_F(LibraryCreation, opening_an_empty_file_for_reading_only_fills_it_as_well) {
  write_file(path, "");
  const auto library = open_read_only();
  EXPECT_TRUE(library->readOnly());
  EXPECT_EQ(library->count<MaterialType>(), 13u);
  EXPECT_EQ(type_names(), default_types);
}

TEST_F(LibraryCreation, closing_the_last_handle_closes_the_file) {
  auto library = create();
  const auto other = library;
  library.reset();
  EXPECT_THAT(open_files(folder.path()), ElementsAre("walls.lib"));
  create();
  EXPECT_EQ(other->count<MaterialType>(), 13u);
}

TEST_F(LibraryCreation, a_closed_library_leaves_no_open_file) {
  create();
  open();
  open_read_only();
  EXPECT_THAT(open_files(folder.path()), IsEmpty());
  EXPECT_FALSE(file_exists(path + "-journal"));
}

TEST_F(LibraryCreation, one_handle_keeps_one_file_open) {
  const auto library = create();
  EXPECT_THAT(open_files(folder.path()), ElementsAre("walls.lib"));
}

TEST_F(LibraryCreation, a_handle_for_reading_only_keeps_one_file_open) {
  create_and_close();
  const auto library = open_read_only();
  EXPECT_THAT(open_files(folder.path()), ElementsAre("walls.lib"));
}

TEST_F(LibraryCreation, foreign_keys_are_enforced_afterwards) {
  const auto library = create();
  const auto oak = veldra::Material::create("Oak");
  oak->addTag(veldra::Tag::create("hard"));
  oak->save(library);
  EXPECT_EQ(thrown_by([&] { library->remove<veldra::Tag>(1); }).type, "veldra::ObjectInUse");
  EXPECT_EQ(library->count<veldra::Tag>(), 1u);
}

TEST_F(LibraryCreation, foreign_keys_are_enforced_in_a_library_that_is_there) {
  {
    const auto library = create();
    const auto oak = veldra::Material::create("Oak");
    oak->addTag(veldra::Tag::create("hard"));
    oak->save(library);
  }
  for (const auto& library : {create(), open()}) {
    EXPECT_EQ(thrown_by([&] { library->remove<veldra::Tag>(1); }).type, "veldra::ObjectInUse");
    EXPECT_EQ(library->count<veldra::Tag>(), 1u);
  }
}

// The default material types.

TEST_F(LibraryCreation, the_default_material_types_have_the_ids_1_to_13) {
  const auto library = create();
  for (unsigned id = 1; id <= default_types.size(); ++id) {
    const auto type = library->get<MaterialType>(id);
    ASSERT_NE(type, nullptr) << id;
    EXPECT_EQ(type->name().utf8(), default_types[id - 1]);
  }
  EXPECT_EQ(library->count<MaterialType>(), 13u);
}

// Asked for a translation, it writes down the question and then does as it is told.
class Provider : public Translations {
 public:
  using Answer = std::function<bool(String&, const String&)>;

  explicit Provider(const Answer& answer) : answer_(answer) { Translations::set(this); }
  ~Provider() override { Translations::set(nullptr); }

  bool translate(String& translation, const String& source, const char* context,
                 int count) override {
    sources.push_back(source.utf8());
    all_arguments_as_promised =
        all_arguments_as_promised && translation.empty() && context == nullptr && count == 0;
    return answer_(translation, source);
  }

  std::vector<std::string> sources;
  bool all_arguments_as_promised = true;

 private:
  Answer answer_;
};

TEST_F(LibraryCreation, a_provider_is_asked_for_each_type_in_order) {
  Provider provider([](String&, const String&) { return false; });
  create_and_close();
  EXPECT_EQ(provider.sources, default_types);
  EXPECT_TRUE(provider.all_arguments_as_promised);
}

TEST_F(LibraryCreation, translations_are_stored) {
  Provider provider([](String& translation, const String& source) {
    translation = ("tipo " + source.utf8() + " é").c_str();
    return true;
  });
  create_and_close();
  std::vector<std::string> expected;
  for (const std::string& name : default_types) expected.push_back("tipo " + name + " é");
  EXPECT_EQ(type_names(), expected);
}

TEST_F(LibraryCreation, a_provider_may_translate_some_of_the_names) {
  Provider provider([](String& translation, const String& source) {
    if (source != String("Wood")) return false;
    translation = "Holz";
    return true;
  });
  create_and_close();
  std::vector<std::string> expected = default_types;
  expected.back() = "Holz";
  EXPECT_EQ(type_names(), expected);
}

TEST_F(LibraryCreation, what_a_provider_wrote_is_dropped_when_it_declines) {
  Provider provider([](String& translation, const String&) {
    translation = "dropped";
    return false;
  });
  create_and_close();
  EXPECT_EQ(type_names(), default_types);
}

TEST_F(LibraryCreation, an_empty_translation_is_used) {
  Provider provider([](String&, const String& source) { return source == String("Earth"); });
  create_and_close();
  std::vector<std::string> expected = default_types;
  expected[2] = "";
  EXPECT_EQ(type_names(), expected);
}

TEST_F(LibraryCreation, a_provider_is_not_asked_about_a_library_that_is_there) {
  create_and_close();
  Provider provider([](String&, const String&) { return false; });
  open();
  create();
  open_read_only();
  EXPECT_THAT(provider.sources, IsEmpty());
}

TEST_F(LibraryCreation, without_a_provider_the_names_are_as_given) {
  ASSERT_EQ(Translations::get(), nullptr);
  create_and_close();
  EXPECT_EQ(type_names(), default_types);
}

// A failure while a new library is filled.

class LibraryCreationFailure : public LibraryCreation {
 protected:
  void expect_a_file_without_schema() const {
    EXPECT_THAT(open_files(folder.path()), IsEmpty());
    EXPECT_FALSE(file_exists(path + "-journal"));
    EXPECT_EQ(PlainDatabase(path).value("SELECT count(*) FROM sqlite_master"), "0");
  }
};

TEST_F(LibraryCreationFailure, names_that_clash_leave_the_file_empty) {
  {
    Provider provider([](String& translation, const String&) {
      translation = "same";
      return true;
    });
    const Thrown thrown = thrown_by([&] { create(); });
    EXPECT_EQ(thrown.type, "odb::sqlite::database_exception");
    EXPECT_EQ(thrown.code, 19);
    EXPECT_EQ(thrown.extended, 2067);
  }
  expect_a_file_without_schema();
  create_and_close();
  EXPECT_EQ(type_names(), default_types);
}

TEST_F(LibraryCreationFailure, what_a_provider_throws_passes_and_leaves_the_file_empty) {
  {
    Provider provider([](String&, const String& source) {
      if (source == String("Stone")) throw std::runtime_error("no dictionary");
      return false;
    });
    const Thrown thrown = thrown_by([&] { create(); });
    EXPECT_EQ(thrown.type, "std::runtime_error");
    EXPECT_EQ(thrown.text, "no dictionary");
  }
  expect_a_file_without_schema();
  create_and_close();
  EXPECT_EQ(type_names(), default_types);
}

TEST_F(LibraryCreationFailure, a_translation_that_is_not_well_formed_leaves_the_file_empty) {
  {
    Provider provider([](String& translation, const String&) {
      const unsigned short text[] = {0xDC00, 0};
      translation = text;
      return true;
    });
    EXPECT_EQ(thrown_by([&] { create(); }).type, "utf8::invalid_utf16");
  }
  expect_a_file_without_schema();
}

}  // namespace
}  // namespace veldra_tests
