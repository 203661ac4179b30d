// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_ROWS_IN_RANGE_HPP
#define VELDRA_STORE_ROWS_IN_RANGE_HPP

#include <odb/sqlite/binding.hxx>
#include <odb/sqlite/connection.hxx>
#include <odb/sqlite/sqlite-types.hxx>
#include <odb/sqlite/statement.hxx>

#include <sqlite3.h>

#include <array>
#include <string>

namespace veldra {

/// What is asked for cannot be had by a few statements for many objects, but perhaps for each of
/// them alone.
struct NotInBulk {};

/// The mapping's own statement, which selects by an id, for a range of ids: with the id as the
/// first column, and in the order of the ids.
std::string over_range(const std::string& statement);

/// The rows of the objects whose ids lie in a range. `Rows` says which: their statement, whose
/// first column is the id of the object, and the image that the mapping reads a row into.
template <class Rows>
class RowsInRange {
 public:
  explicit RowsInRange(odb::sqlite::connection& connection)
      : statement_(connection, Rows::statement(), false, false, parameters_, results_) {
    for (std::size_t i = 0; i != range_.size(); ++i) {
      range_binds_[i] = {odb::sqlite::bind::integer, &range_[i], nullptr, 0, nullptr, nullptr};
    }
    for (std::size_t i = 0; i != result_binds_.size(); ++i) {
      result_binds_[i].truncated = &truncated_[i];
    }
    bind_image();
  }

  /// Goes to the first row.
  void open(unsigned first, unsigned last) {
    range_ = {first, last};
    statement_.execute();
    next();
  }

  /// Goes to the next row.
  void next() {
    has_row_ = statement_.next();
    if (!has_row_) return;
    if (sqlite3_column_type(statement_.handle(), 0) != SQLITE_INTEGER) throw NotInBulk();
    id_ = sqlite3_column_int64(statement_.handle(), 0);
  }

  void close() noexcept { statement_.free_result(); }

  /// Passes over the rows of all objects before the one with that id. Returns whether there is one
  /// of its own.
  bool go_to(unsigned id) {
    while (has_row_ && id_ < id) next();
    return has_row_ && id_ == id;
  }

  /// The row that it is at.
  const typename Rows::Image& row() {
    if (statement_.load() == odb::sqlite::select_statement::truncated) {
      Rows::grow(image_, truncated_.data() + 1);
      bind_image();
      statement_.reload();
    }
    return image_;
  }

 private:
  void bind_image() {
    using odb::sqlite::bind;
    result_binds_[0] = {bind::integer, &bound_id_, nullptr, 0, &is_null_, &truncated_[0]};
    Rows::bind(result_binds_.data() + 1, image_);
  }

  std::array<long long, 2> range_{};
  std::array<odb::sqlite::bind, 2> range_binds_{};
  std::array<odb::sqlite::bind, 1 + Rows::columns> result_binds_{};
  std::array<bool, 1 + Rows::columns> truncated_{};
  odb::sqlite::binding parameters_{range_binds_.data(), range_binds_.size()};
  odb::sqlite::binding results_{result_binds_.data(), result_binds_.size()};
  long long bound_id_ = 0;
  bool is_null_ = false;
  typename Rows::Image image_;
  odb::sqlite::select_statement statement_;
  bool has_row_ = false;
  long long id_ = 0;
};

}  // namespace veldra

#endif
