// SPDX-License-Identifier: GPL-2.0-or-later
#include "foundation/virtual_slots.hpp"
#include "support/names.hpp"
#include "support/temporary.hpp"

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace veldra_tests {
namespace {

static_assert(std::is_abstract<Translations>::value, "");
static_assert(std::has_virtual_destructor<Translations>::value, "");
static_assert(std::is_same<decltype(&Translations::translate),
                           bool (Translations::*)(String&, const String&, const char*, int)>::value,
              "");

const std::vector<std::string> default_names = {
    "Ceramic", "Concrete", "Earth",   "Generic", "Glass",   "Liquid", "Masonry",
    "Metal",   "Paint",    "Plastic", "Stone",   "Textile", "Wood"};

/// Notes what it is asked, and translates what it knows.
class Provider : public Translations {
 public:
  ~Provider() override { ++ended; }

  bool translate(String& translation, const String& source, const char* context,
                 int count) override {
    asked.push_back(source.utf8());
    starts_empty = starts_empty && translation.empty();
    passes_zero = passes_zero && context == nullptr && count == 0;
    return answer(translation, source);
  }

  std::vector<std::string> asked;
  bool starts_empty = true;
  bool passes_zero = true;
  static int ended;

 protected:
  virtual bool answer(String& translation, const String& source) = 0;
};

int Provider::ended = 0;

class Prefixing : public Provider {
  bool answer(String& translation, const String& source) override {
    translation = ("~" + source.utf8()).c_str();
    return true;
  }
};

class Undecided : public Provider {
  bool answer(String& translation, const String&) override {
    translation = "written, then taken back";
    return false;
  }
};

class Partial : public Provider {
  bool answer(String& translation, const String& source) override {
    if (source != String("Wood")) return false;
    translation = "H\xC3\xB6lzer";
    return true;
  }
};

class TranslationsTest : public testing::Test {
 protected:
  ~TranslationsTest() override { Translations::set(nullptr); }

  std::vector<std::string> names_in_a_new_library() {
    const auto library = Library::create(":memory:", Unit::Millimetres, "");
    std::vector<std::string> names;
    for (unsigned id = 1; id <= default_names.size(); ++id) {
      const auto type = library->get<MaterialType>(id);
      names.push_back(type ? type->name().utf8() : "missing");
    }
    return names;
  }
};

TEST_F(TranslationsTest, there_is_no_provider_at_the_start) {
  EXPECT_EQ(Translations::get(), nullptr);
}

TEST_F(TranslationsTest, gives_the_provider_that_was_set_last) {
  Prefixing first;
  Undecided second;
  Translations::set(&first);
  EXPECT_EQ(Translations::get(), &first);
  Translations::set(&second);
  EXPECT_EQ(Translations::get(), &second);
  Translations::set(nullptr);
  EXPECT_EQ(Translations::get(), nullptr);
}

TEST_F(TranslationsTest, providers_stay_the_hosts) {
  Provider::ended = 0;
  Prefixing first;
  Undecided second;
  Translations::set(&first);
  Translations::set(&second);
  Translations::set(nullptr);
  EXPECT_EQ(Provider::ended, 0);
}

TEST_F(TranslationsTest, without_a_provider_names_stay_as_they_are) {
  EXPECT_THAT(names_in_a_new_library(), ElementsAreArray(default_names));
}

TEST_F(TranslationsTest, a_provider_translates_the_default_names) {
  Prefixing provider;
  Translations::set(&provider);
  std::vector<std::string> expected;
  for (const std::string& name : default_names) expected.push_back("~" + name);
  EXPECT_THAT(names_in_a_new_library(), ElementsAreArray(expected));
}

TEST_F(TranslationsTest, a_provider_that_answers_no_leaves_the_default_names) {
  Undecided provider;
  Translations::set(&provider);
  EXPECT_THAT(names_in_a_new_library(), ElementsAreArray(default_names));
  EXPECT_THAT(provider.asked, ElementsAreArray(default_names));
}

TEST_F(TranslationsTest, a_provider_may_know_some_names_only) {
  Partial provider;
  Translations::set(&provider);
  std::vector<std::string> expected = default_names;
  expected.back() = "H\xC3\xB6lzer";
  EXPECT_THAT(names_in_a_new_library(), ElementsAreArray(expected));
}

TEST_F(TranslationsTest, a_provider_is_asked_once_for_each_name_with_nothing_else) {
  Prefixing provider;
  Translations::set(&provider);
  names_in_a_new_library();
  EXPECT_THAT(provider.asked, ElementsAreArray(default_names));
  EXPECT_TRUE(provider.starts_empty);
  EXPECT_TRUE(provider.passes_zero);
}

TEST_F(TranslationsTest, a_provider_that_was_taken_away_is_not_asked) {
  Prefixing provider;
  Translations::set(&provider);
  Translations::set(nullptr);
  names_in_a_new_library();
  EXPECT_THAT(provider.asked, IsEmpty());
}

TEST_F(TranslationsTest, an_existing_library_is_not_translated) {
  const TemporaryFolder folder;
  const std::string path = folder / "existing.lib";
  Library::create(path.c_str(), Unit::Millimetres, "");
  Prefixing provider;
  Translations::set(&provider);
  Library::create(path.c_str(), Unit::Millimetres, "");
  Library::open(path.c_str(), false);
  EXPECT_THAT(provider.asked, IsEmpty());
}

TEST_F(TranslationsTest, translating_is_in_the_slot_after_the_destructor) {
  Prefixing provider;
  Translations* const base = &provider;
  const auto translate =
      virtual_slot<bool(Translations*, String&, const String&, const char*, int)>(base, 2);
  String translation;
  EXPECT_TRUE(translate(base, translation, "Wood", nullptr, 0));
  EXPECT_EQ(translation.utf8(), "~Wood");
}

TEST_F(TranslationsTest, the_destructor_comes_first) {
  Provider::ended = 0;
  Translations* const provider = new Prefixing;
  const auto end_and_free = virtual_slot<void(Translations*)>(provider, 1);
  end_and_free(provider);
  EXPECT_EQ(Provider::ended, 1);
}

}  // namespace
}  // namespace veldra_tests
