// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_CHECK_FIXTURE_HPP
#define VELDRA_TESTS_STORE_CHECK_FIXTURE_HPP

#include "support/database.hpp"
#include "support/library_fixture.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace veldra_tests {

/// A library that is changed behind its back and then examined.
class CheckFixture : public LibraryFixture {
 protected:
  void tamper(const std::string& statements) const {
    PlainDatabase(path).execute("PRAGMA foreign_keys = OFF;" + statements);
  }

  /// Replaces a word in the text of a table. SQLite takes the new text for what was always there.
  void rewrite(const std::string& table, const std::string& word, const std::string& by) const {
    tamper("PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = replace(sql, '" + word +
           "', '" + by + "') WHERE name = '" + table + "'");
  }

  std::vector<std::string> findings() const { return findings(*open()); }

  static std::vector<std::string> findings(const veldra::Library& library) {
    std::vector<veldra::String> found;
    library.check(found);
    std::vector<std::string> texts;
    for (const auto& finding : found) texts.push_back(finding.utf8());
    return texts;
  }
};

}  // namespace veldra_tests

#endif
