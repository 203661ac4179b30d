// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/errors.hpp>

#include "support/names.hpp"
#include "support/runtime_errors.hpp"

#include <map>
#include <new>
#include <stdexcept>
#include <string>

namespace veldra_tests {
namespace {

/// What a call threw, by way of a pointer to it.
template <class Call>
std::exception_ptr thrown_error(const Call& call) {
  try {
    call();
  } catch (...) {
    return std::current_exception();
  }
  return nullptr;
}

template <class Call>
ErrorKind kind_thrown_by(const Call& call) {
  return error_kind(thrown_error(call));
}

TEST(ErrorKinds, have_numbers_that_never_change) {
  const ErrorKind kinds[] = {
      ErrorKind::Other,          ErrorKind::Busy,          ErrorKind::ReadOnly,
      ErrorKind::Full,           ErrorKind::Damaged,       ErrorKind::NotALibrary,
      ErrorKind::UnknownVersion, ErrorKind::NotFound,      ErrorKind::InUse,
      ErrorKind::NotUnique,      ErrorKind::MalformedText, ErrorKind::OutOfMemory,
      ErrorKind::Interrupted,    ErrorKind::Transaction};
  int number = 0;
  for (const ErrorKind kind : kinds) EXPECT_EQ(static_cast<int>(kind), number++);
}

TEST(ErrorKinds, of_the_librarys_own_exceptions) {
  EXPECT_EQ(kind_thrown_by([] { throw UnknownError(); }), ErrorKind::Other);
  EXPECT_EQ(kind_thrown_by([] { throw NotALibrary("x"); }), ErrorKind::NotALibrary);
  EXPECT_EQ(kind_thrown_by([] { throw Interrupted(); }), ErrorKind::Interrupted);
  EXPECT_EQ(kind_thrown_by([] { throw LibraryReadOnly(); }), ErrorKind::ReadOnly);
  EXPECT_EQ(kind_thrown_by([] { throw ObjectNotFound(); }), ErrorKind::NotFound);
  EXPECT_EQ(kind_thrown_by([] { throw ObjectInUse(); }), ErrorKind::InUse);
  EXPECT_EQ(kind_thrown_by([] { throw ObjectNotUnique(); }), ErrorKind::NotUnique);
  EXPECT_EQ(kind_thrown_by([] { throw InappropriateCustomProperty(); }), ErrorKind::Other);
  EXPECT_EQ(kind_thrown_by([] { throw FileExists("x"); }), ErrorKind::Other);
  EXPECT_EQ(kind_thrown_by([] { throw OtherLibrary("x"); }), ErrorKind::Other);
  EXPECT_EQ(kind_thrown_by([] { throw SameFile("x"); }), ErrorKind::Other);
}

TEST(ErrorKinds, of_the_runtimes_exceptions) {
  const std::map<std::string, ErrorKind> kinds{
      {"odb::timeout", ErrorKind::Busy},
      {"odb::deadlock", ErrorKind::Busy},
      {"odb::connection_lost", ErrorKind::Other},
      {"odb::unknown_schema_version", ErrorKind::UnknownVersion},
      {"odb::no_type_info", ErrorKind::Damaged},
      {"odb::object_not_persistent", ErrorKind::NotFound},
      {"odb::transaction_already_finalized", ErrorKind::Transaction},
      {"odb::already_in_transaction", ErrorKind::Transaction},
      {"utf8::invalid_utf8", ErrorKind::MalformedText},
      {"utf8::invalid_utf16", ErrorKind::MalformedText},
      {"utf8::invalid_code_point", ErrorKind::MalformedText},
      {"utf8::not_enough_room", ErrorKind::MalformedText}};
  ASSERT_EQ(kinds.size(), runtime_errors().size());
  for (const auto& error : runtime_errors()) {
    EXPECT_EQ(kind_thrown_by(error.second), kinds.at(error.first)) << error.first;
    EXPECT_NE(error_text(thrown_error(error.second)), "") << error.first;
  }
}

struct Code {
  int primary;
  int extended;
  ErrorKind kind;
};

TEST(ErrorKinds, of_codes_of_the_database) {
  const Code codes[] = {{1, 1, ErrorKind::Other},         {5, 5, ErrorKind::Busy},
                        {5, 261, ErrorKind::Busy},        {6, 262, ErrorKind::Busy},
                        {15, 15, ErrorKind::Busy},        {7, 7, ErrorKind::OutOfMemory},
                        {8, 1032, ErrorKind::ReadOnly},   {9, 9, ErrorKind::Interrupted},
                        {10, 266, ErrorKind::Other},      {10, 3082, ErrorKind::OutOfMemory},
                        {11, 267, ErrorKind::Damaged},    {13, 13, ErrorKind::Full},
                        {14, 14, ErrorKind::Other},       {19, 1811, ErrorKind::Other},
                        {19, 2067, ErrorKind::NotUnique}, {19, 1555, ErrorKind::NotUnique},
                        {19, 787, ErrorKind::InUse},      {26, 26, ErrorKind::NotALibrary}};
  for (const Code& code : codes) {
    const auto error =
        thrown_error([&] { throw_database_error(code.primary, code.extended, "told so"); });
    EXPECT_EQ(error_kind(error), code.kind) << code.extended;
    EXPECT_EQ(error_code(error), code.extended);
    EXPECT_THAT(error_text(error), HasSubstr("told so"));
    const auto own = thrown_error([&] { throw DatabaseError(code.extended); });
    EXPECT_EQ(error_kind(own), code.kind) << code.extended;
    EXPECT_EQ(error_code(own), code.extended);
  }
}

TEST(ErrorKinds, tell_a_transaction_that_has_ended_from_one_that_is_open) {
  const auto& errors = runtime_errors();
  EXPECT_EQ(error_code(thrown_error(errors.at("odb::transaction_already_finalized"))), 516);
  EXPECT_EQ(error_code(thrown_error(errors.at("odb::already_in_transaction"))), 0);
}

TEST(ErrorKinds, of_what_is_none_of_the_librarys) {
  EXPECT_EQ(error_kind(nullptr), ErrorKind::Other);
  EXPECT_EQ(error_code(nullptr), 0);
  EXPECT_EQ(error_text(nullptr), "");
  EXPECT_EQ(kind_thrown_by([] { throw 7; }), ErrorKind::Other);
  EXPECT_EQ(error_text(thrown_error([] { throw 7; })), "");
  EXPECT_EQ(kind_thrown_by([] { throw std::runtime_error("own"); }), ErrorKind::Other);
  EXPECT_EQ(error_text(thrown_error([] { throw std::runtime_error("own"); })), "own");
  EXPECT_EQ(kind_thrown_by([] { throw std::bad_alloc(); }), ErrorKind::OutOfMemory);
}

TEST(ErrorKinds, are_of_the_error_that_is_being_handled) {
  EXPECT_EQ(error_kind(), ErrorKind::Other);
  try {
    throw ObjectNotUnique("Material.code");
  } catch (...) {
    EXPECT_EQ(error_kind(), ErrorKind::NotUnique);
    EXPECT_EQ(error_code(), 0);
    EXPECT_NE(error_text(), "");
  }
}

}  // namespace
}  // namespace veldra_tests
