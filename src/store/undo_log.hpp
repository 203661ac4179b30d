// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_UNDO_LOG_HPP
#define VELDRA_STORE_UNDO_LOG_HPP

#include "objects/record.hpp"

#include <functional>
#include <list>
#include <memory>
#include <utility>
#include <vector>

namespace veldra {

/// What an operation changes in the host's objects. Unless the changes are kept, the objects get
/// back what they had: an id that was rolled back in the file would be given to another object.
class UndoLog {
 public:
  UndoLog() = default;
  UndoLog(const UndoLog&) = delete;
  UndoLog& operator=(const UndoLog&) = delete;
  ~UndoLog();

  /// Remembers what saving changes in every object: id, library and dirty flag.
  void remember(std::shared_ptr<const void> object, ObjectRecord& record);

  /// Sets a field of a remembered object. What the host sets in place of that value stays.
  template <class Value>
  void set(Value& field, Value value) {
    actions_.push_back([&field, value, former = field]() mutable {
      if (field == value) field = std::move(former);
    });
    field = std::move(value);
  }

  /// Sets a list of references. It goes back as a whole: objects that were read to stand in it keep
  /// ids that may be those of others then.
  template <class List>
  void set_list(List& field, List list) {
    actions_.push_back([&field, former = field]() mutable { field = std::move(former); });
    field = std::move(list);
  }

  /// Remembers all values of a remembered object.
  template <class Record>
  void remember_values(Record& record) {
    actions_.push_back([&record, former = record]() mutable { record = std::move(former); });
  }

  void keep_changes() noexcept;

 private:
  struct Former {
    std::shared_ptr<const void> object;  // keeps the record
    ObjectRecord* record;
    unsigned id;
    std::weak_ptr<Library> library;
    bool dirty;
  };

  std::vector<Former> records_;
  std::vector<std::function<void()>> actions_;
};

/// The logs of several operations, the latest first. A list, so that handing on never fails.
using UndoLogs = std::list<UndoLog>;

}  // namespace veldra

#endif
