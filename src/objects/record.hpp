// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_RECORD_HPP
#define VELDRA_OBJECTS_RECORD_HPP

#include <veldra/string.hpp>

#include <memory>

namespace veldra {

class Library;

/// What the record of every object begins with. What is not of the values here, `assign_values`
/// leaves as it is and `UndoLog` gives back.
struct ObjectRecord {
  std::weak_ptr<Library> library;  // weak: an object must not keep its file open
  unsigned id = 0;
  bool dirty = false;

  /// Stands for an object whose id is all that matters: it was copied before. Never in the hands of
  /// a host.
  bool is_stub = false;
};

/// The same with its name, which is a `String`, or a `SharedName` for what others refer to by the
/// thousand.
template <class Name>
struct NamedRecord : ObjectRecord {
  using Beginning = NamedRecord;

  Name name;
};

}  // namespace veldra

#endif
