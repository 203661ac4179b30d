// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_ROWS_OF_MANY_HPP
#define VELDRA_STORE_ROWS_OF_MANY_HPP

#include <odb/sqlite/binding.hxx>
#include <odb/sqlite/connection.hxx>
#include <odb/sqlite/sqlite-types.hxx>
#include <odb/sqlite/statement.hxx>

#include <sqlite3.h>

#include <array>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace veldra {

/// What is asked for cannot be had by a few statements for many objects, but perhaps for each of
/// them alone.
struct NotInBulk {};

/// How many objects at most are read by the same statement.
constexpr std::size_t most_at_once = 128;

/// Whether ids, which ascend, lie so close together that reading all in between is the fastest.
bool is_dense(const std::vector<unsigned>& ids);

/// The mapping's own statement, which selects by one id, for all ids in a range, or for
/// `most_at_once` of them: with the id as the first column, and in the order of the ids alone.
std::string for_range(const std::string& statement);
std::string for_list(const std::string& statement);

/// The rows of many objects. `Rows` says which: the statement for one object, and the image that
/// the mapping reads a row into.
template <class Rows>
class RowsOfMany {
 public:
  explicit RowsOfMany(odb::sqlite::connection& connection) : connection_(connection) {
    for (std::size_t i = 0; i != ids_.size(); ++i) {
      id_binds_[i] = {odb::sqlite::bind::integer, &ids_[i], nullptr, 0, nullptr, nullptr};
    }
    for (std::size_t i = 0; i != result_binds_.size(); ++i) {
      result_binds_[i].truncated = &truncated_[i];
    }
    bind_image();
  }

  /// Goes to the first row of the objects with those ids, which ascend, or of others between them.
  void open(const std::vector<unsigned>& ids) {
    if (is_dense(ids)) {
      ids_[0] = ids.front();
      ids_[1] = ids.back();
      execute(of_range_, for_range, range_);
    } else {
      for (std::size_t i = 0; i != ids_.size(); ++i) ids_[i] = i < ids.size() ? ids[i] : ids.back();
      execute(of_list_, for_list, list_);
    }
    id_ = std::numeric_limits<long long>::min();
    next();
  }

  /// Goes to the next row. That rows do not ascend is seen in damaged files only, where looking for
  /// one of them gives something else.
  void next() {
    has_row_ = open_->next();
    if (!has_row_) return;
    const long long former = id_;
    id_ = whole_number(0);
    if (id_ < former) throw NotInBulk();
  }

  /// What a column holds in the row that it is at.
  long long whole_number(int column) const {
    if (sqlite3_column_type(open_->handle(), column) != SQLITE_INTEGER) throw NotInBulk();
    return sqlite3_column_int64(open_->handle(), column);
  }

  void close() noexcept {
    if (open_ != nullptr) open_->free_result();
  }

  /// Passes over the rows of all objects before the one with that id. Returns whether there is one
  /// of its own.
  bool go_to(unsigned id) {
    while (has_row_ && id_ < id) next();
    return has_row_ && id_ == id;
  }

  /// The row that it is at.
  const typename Rows::Image& row() {
    if (open_->load() == odb::sqlite::select_statement::truncated) {
      Rows::grow(image_, truncated_.data() + 1);
      bind_image();
      open_->reload();
    }
    return image_;
  }

 private:
  using Statement = std::unique_ptr<odb::sqlite::select_statement>;

  void bind_image() {
    using odb::sqlite::bind;
    result_binds_[0] = {bind::integer, &bound_id_, nullptr, 0, &is_null_, &truncated_[0]};
    Rows::bind(result_binds_.data() + 1, image_);
  }

  template <class Text>
  void execute(Statement& statement, Text text_for, odb::sqlite::binding& ids) {
    open_ = nullptr;
    if (statement == nullptr) {
      statement = std::make_unique<odb::sqlite::select_statement>(
          connection_, text_for(Rows::statement), false, false, ids, results_);
    }
    open_ = statement.get();
    open_->execute();
  }

  odb::sqlite::connection& connection_;
  std::array<long long, most_at_once> ids_{};
  std::array<odb::sqlite::bind, most_at_once> id_binds_{};
  std::array<odb::sqlite::bind, 1 + Rows::columns> result_binds_{};
  std::array<bool, 1 + Rows::columns> truncated_{};
  odb::sqlite::binding range_{id_binds_.data(), 2};
  odb::sqlite::binding list_{id_binds_.data(), id_binds_.size()};
  odb::sqlite::binding results_{result_binds_.data(), result_binds_.size()};
  long long bound_id_ = 0;
  bool is_null_ = false;
  typename Rows::Image image_;
  Statement of_range_;
  Statement of_list_;
  odb::sqlite::select_statement* open_ = nullptr;
  bool has_row_ = false;
  long long id_ = 0;
};

}  // namespace veldra

#endif
