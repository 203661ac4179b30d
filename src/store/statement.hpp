// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_STATEMENT_HPP
#define VELDRA_STORE_STATEMENT_HPP

#include <odb/sqlite/connection.hxx>

#include <string>

struct sqlite3_stmt;

namespace veldra {

/// A statement of our own, for the few questions that the mapping cannot ask. Errors arrive as the
/// runtime's exceptions.
class Statement {
 public:
  Statement(odb::sqlite::connection& connection, const char* text);
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement();

  void bind(int parameter, long long value);

  /// The text must outlive the statement.
  void bind(int parameter, const char* text);

  /// Goes to the next row; false when there is none.
  bool next();

  bool is_integer(int column) const;
  long long integer(int column) const;
  std::string text(int column) const;

 private:
  void check(int result) const;

  odb::sqlite::connection& connection_;
  sqlite3_stmt* statement_ = nullptr;
};

/// The first value that a pragma gives.
class Setting {
 public:
  Setting(odb::sqlite::connection& connection, const char* pragma);

  /// 0 when there is none.
  long long number() const;

  /// Empty when there is none.
  std::string text() const;

 private:
  Statement row_;
  bool is_there_;
};

}  // namespace veldra

#endif
