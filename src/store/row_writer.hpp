// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_ROW_WRITER_HPP
#define VELDRA_STORE_ROW_WRITER_HPP

#include "store/database.hpp"

#include <veldra/id_mapping.hpp>

#include <string>

namespace veldra {

/// Writes the rows of objects, within a transaction. Knows nothing but the object.
class RowWriter {
 public:
  struct Attempt {
    bool taken;                ///< a unique value is another object's, and nothing is written
    IdMapping::Status status;  ///< what became of the row otherwise
    std::string message;       ///< which value is taken, as the database tells
  };

  explicit RowWriter(Database& database) : database_(database) {}

  /// Inserts an object without an id, which gets one, and updates any other. Throws
  /// `ObjectNotFound` when there is no row to update.
  template <class T>
  Attempt write(T& object);

 private:
  template <class T>
  IdMapping::Status insert(T& object);
  template <class T>
  IdMapping::Status update(T& object);
  IdMapping::Status update(Tag& tag);

  Database& database_;
};

}  // namespace veldra

#endif
