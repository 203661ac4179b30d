// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/runtime_errors.hpp"

#include <utf8.h>
#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

namespace veldra_tests {

const std::map<std::string, std::function<void()>>& runtime_errors() {
  static const std::map<std::string, std::function<void()>> errors{
      {"odb::timeout", [] { throw odb::timeout(); }},
      {"odb::deadlock", [] { throw odb::deadlock(); }},
      {"odb::connection_lost", [] { throw odb::connection_lost(); }},
      {"odb::unknown_schema_version", [] { throw odb::unknown_schema_version(1); }},
      {"odb::no_type_info", [] { throw odb::no_type_info(); }},
      {"odb::object_not_persistent", [] { throw odb::object_not_persistent(); }},
      {"odb::transaction_already_finalized", [] { throw odb::transaction_already_finalized(); }},
      {"odb::already_in_transaction", [] { throw odb::already_in_transaction(); }},
      {"utf8::invalid_utf8", [] { throw utf8::invalid_utf8(utf8::uint8_t{0x80}); }},
      {"utf8::invalid_utf16", [] { throw utf8::invalid_utf16(0xD800); }},
      {"utf8::invalid_code_point", [] { throw utf8::invalid_code_point(0x110000); }},
      {"utf8::not_enough_room", [] { throw utf8::not_enough_room(); }}};
  return errors;
}

void throw_database_error(int code, int extended_code, const std::string& message) {
  throw odb::sqlite::database_exception(code, extended_code, message);
}

}  // namespace veldra_tests
