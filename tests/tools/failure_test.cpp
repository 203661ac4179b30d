// SPDX-License-Identifier: GPL-2.0-or-later
#include "failure.hpp"
#include "opening.hpp"
#include "text.hpp"

#include "support/runtime_errors.hpp"

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <new>
#include <stdexcept>

namespace veldra_tests {
namespace {

using Kind = veldra::Library::Recognition::Kind;
using Sentences = std::map<std::string, std::string>;

/// What is said of what a call throws while it works on 'a.lib'.
std::string said_of(const std::function<void()>& call) {
  try {
    veldra_tool::working_on("a.lib", call);
  } catch (const veldra_tool::Failure& failure) {
    const std::string text = failure.what();
    const std::string file = "'a.lib': ";
    return text.compare(0, file.size(), file) == 0 ? text.substr(file.size()) : text;
  } catch (const veldra_tool::Stopped&) {
    return "stopped";
  } catch (const std::bad_alloc&) {
    return "no memory";
  }
  return "nothing";
}

constexpr const char* held = "another program holds the library";
constexpr const char* any = "the library cannot be used";

/// For each result code of SQLite what is said of it.
const std::map<int, std::string>& database_sentences() {
  static const std::map<int, std::string> sentences{
      {1,
       "the database in the file refuses what a library must be able to do; 'veldra check' may "
       "tell more"},
      {2, any},
      {3, "the file may not be used"},
      {4, "the work on the library was broken off"},
      {5, held},
      {6, held},
      {7, "there is not enough memory"},
      {8, "the library can only be read"},
      {9, "the work on the library was broken off"},
      {10, "the disk failed while the library was read or written"},
      {11, "the library is damaged"},
      {12, any},
      {13, "the disk is full"},
      {14, "the file cannot be opened"},
      {15, held},
      {16, any},
      {17, "another program changed the tables of the library meanwhile"},
      {18, "a text is too long for a library"},
      {19, "the library refuses a value, because others depend on it"},
      {20, "the library has a value where one of another kind belongs"},
      {21, any},
      {22, "the file is too large for this system"},
      {23, "the file may not be used"},
      {24, any},
      {25, any},
      {26, "this is not a veldra library"},
      {99, any}};
  return sentences;
}

TEST(Sentence, of_each_error_of_the_database_is_its_own_whoever_throws_it) {
  for (const auto& [code, sentence] : database_sentences()) {
    EXPECT_EQ(said_of([&, code = code] { throw_database_error(code, code, "database"); }), sentence)
        << code;
    EXPECT_EQ(said_of([&, code = code] { throw veldra::DatabaseError(code); }), sentence) << code;
  }
}

TEST(Sentence, of_a_full_disk_is_not_that_of_ids_that_have_run_out) {
  EXPECT_EQ(said_of([] { throw_database_error(13, 13, "no id is left"); }),
            "the library has no id left for another object of a kind");
}

TEST(Sentence, of_a_disk_is_not_that_of_a_lack_of_memory) {
  EXPECT_EQ(said_of([] { throw_database_error(10, 10 | (12 << 8), "disk I/O error"); }),
            "there is not enough memory");
  EXPECT_EQ(said_of([] { throw_database_error(10, 10 | (1 << 8), "disk I/O error"); }),
            database_sentences().at(10));
}

TEST(Sentence, of_each_error_of_the_runtime_is_its_own) {
  const Sentences sentences{
      {"odb::timeout", held},
      {"odb::deadlock", held},
      {"odb::connection_lost", any},
      {"odb::unknown_schema_version", "the library was made by a version that is not known here"},
      {"odb::no_type_info", "the library has an asset of a kind that is not known here"},
      {"odb::object_not_persistent",
       "the library does not say what library it is; 'veldra check' tells more"},
      {"odb::transaction_already_finalized",
       "the disk is full or has failed, or there is not enough memory"},
      {"odb::already_in_transaction", any},
      {"utf8::invalid_utf8", "the library has a text that is not UTF-8"},
      {"utf8::invalid_utf16", "a text has half of a character"},
      {"utf8::invalid_code_point", "a text has a character that does not exist"},
      {"utf8::not_enough_room", "the library has a text that is not UTF-8"}};
  ASSERT_EQ(sentences.size(), runtime_errors().size());
  for (const auto& [name, call] : runtime_errors()) {
    EXPECT_EQ(said_of(call), sentences.at(name)) << name;
  }
}

TEST(Sentence, of_each_error_of_the_library_is_its_own) {
  EXPECT_EQ(said_of([] { throw veldra::LibraryReadOnly(); }), "the library can only be read");
  EXPECT_EQ(said_of([] { throw veldra::ObjectInUse(); }), "the object is in use");
  EXPECT_EQ(said_of([] { throw veldra::ObjectNotFound(); }),
            "an object has gone while it was used");
  EXPECT_EQ(said_of([] { throw veldra::NotALibrary("a.lib"); }), "this is not a veldra library");
  EXPECT_EQ(said_of([] { throw veldra::InappropriateCustomProperty(); }),
            "a custom property is for objects of another kind");
  EXPECT_EQ(said_of([] { throw veldra::UnknownError(); }), "the library cannot be changed");
  EXPECT_EQ(said_of([] { throw veldra::ObjectNotUnique(); }),
            "an object has a name that another one has already");
  EXPECT_EQ(said_of([] { throw veldra::ObjectNotUnique("Material.code"); }),
            "a material has a code that another material has already");
  EXPECT_EQ(said_of([] { throw veldra::ObjectNotUnique("Tag.name"); }),
            "two objects have the same value of Tag.name");
}

TEST(Sentence, of_what_says_nothing_itself_is_a_sentence_all_the_same) {
  EXPECT_EQ(said_of([] { throw std::runtime_error("odb::sqlite: SQL logic error"); }), any);
}

TEST(Sentence, is_left_to_others_where_the_cause_is_not_the_library) {
  EXPECT_EQ(said_of([] { throw veldra_tool::Failure("a sentence"); }), "a sentence");
  EXPECT_EQ(said_of([] { throw veldra::Interrupted(); }), "stopped");
  EXPECT_EQ(said_of([] { throw veldra_tool::Stopped(); }), "stopped");
  EXPECT_EQ(said_of([] { throw std::bad_alloc(); }), "no memory");
}

TEST(Sentence, of_each_kind_of_file_is_its_own) {
  const std::map<Kind, std::string> sentences{
      {Kind::Missing, "there is no such file"},
      {Kind::Empty, "the file is empty, and not a veldra library"},
      {Kind::Library, ""},
      {Kind::OlderLibrary, ""},
      {Kind::NewerLibrary, "the library was made by a newer version of veldra"},
      {Kind::UnknownVersion, "the library was made by a version that is not known here"},
      {Kind::WithoutVersion,
       "the library does not say its version any more; 'veldra check' tells more"},
      {Kind::OtherDatabase, "this is a database of another program, and not a veldra library"},
      {Kind::Damaged, "the library is damaged"},
      {Kind::Other, "this is not a veldra library"},
      {Kind::NeedsRecovery,
       "a program did not finish its work on the library, which can only be put in order where it "
       "may be written"},
      {Kind::WithoutIdentity,
       "the library does not say what library it is; 'veldra check' tells more"}};
  ASSERT_EQ(sentences.size(), static_cast<std::size_t>(Kind::WithoutIdentity) + 1);
  for (const auto& [kind, sentence] : sentences) {
    EXPECT_EQ(veldra_tool::why_not_a_library(kind), sentence) << static_cast<int>(kind);
  }
}

}  // namespace
}  // namespace veldra_tests
