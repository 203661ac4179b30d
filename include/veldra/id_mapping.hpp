// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_ID_MAPPING_HPP
#define VELDRA_ID_MAPPING_HPP

#include <veldra/export.hpp>
#include <veldra/values.hpp>

#include <cstddef>
#include <map>

namespace veldra {

class Library;

/// A record of copying: for each object of a source library, the object of the destination library
/// that stands for it, and how that object was found or made.
///
/// Saving and copying add entries. A host that passes the same mapping to several calls gets:
///
/// - no object twice: a later call uses the objects that an earlier one has made;
/// - the ids of the copies.
///
///     veldra::IdMapping mapping(office.get());
///     office->copyAll(supplier, mapping);
///     veldra::IdMapping::Value oak;
///     if (mapping.compute({{veldra::ObjectType::Material, 17}, supplier.get()}, oak)) {
///       // material 17 of the supplier is material oak.id of the office now
///     }
///
/// Lifetime: a mapping keeps no library open and compares libraries by their addresses. Do not use
/// it after one of its libraries was closed.
///
/// Entries of a call that has thrown, or whose transaction was rolled back, stay. Their ids may be
/// given to other objects later. Go on with a copy of the mapping that was made before the call.
///
/// Thread rule: as for a standard container.
class VELDRA_EXPORT IdMapping {
 public:
  /// How an object of the destination was found or made.
  enum Status : int {
    Inserted = 0,  ///< the object is new
    Existing = 1,  ///< the object was there and has not been changed
    Updated = 2    ///< the object was there and has been overwritten
  };

  /// An object of a source library.
  struct VELDRA_EXPORT Key {
    ObjectKey key;          ///< the kind of the object and its id in the source
    const Library* source;  ///< the source; null for an object that belonged to no library

    /// Makes the key of an object. Keeps the pointer alone.
    Key(const ObjectKey& key, const Library* source);

    /// Whether library, kind and id are equal.
    bool operator==(const Key& other) const;

    /// The opposite of `==`.
    bool operator!=(const Key& other) const;

    /// Orders keys by library, then by kind, then by id.
    bool operator<(const Key& other) const;
  };

  /// The object of the destination that stands for an object of a source.
  struct VELDRA_EXPORT Value {
    unsigned id;    ///< the id of the object in the destination; its kind is that of the key
    Status status;  ///< how the object was found or made

    /// Makes a value with the id 0 and the status `Inserted`.
    Value();

    /// Makes a value.
    Value(unsigned id, Status status);
  };

  /// The container of the entries.
  using Entries = std::map<Key, Value>;

  /// An iterator over the entries.
  using const_iterator = Entries::const_iterator;

  /// Makes an empty mapping into `destination`. Keeps the pointer alone.
  explicit IdMapping(const Library* destination);

  /// The library to which the ids of the values belong.
  const Library* destination() const noexcept;

  /// Sets the value of a key: adds an entry, or replaces the value of the entry that is there.
  ///
  /// Throws: `std::bad_alloc`.
  void assign(const Key& key, const Value& value);

  /// Whether the mapping has an entry for `key`.
  bool has(const Key& key) const;

  /// Looks an entry up. If there is one, writes its value to `value` and returns true. If there is
  /// none, leaves `value` as it is and returns false.
  bool compute(const Key& key, Value& value) const;

  /// Removes the entry of a key. Returns whether there was one.
  bool remove(const Key& key);

  /// The first entry in the order of the keys. Valid until the entry is removed.
  const_iterator begin() const noexcept;

  /// The end of the entries.
  const_iterator end() const noexcept;

  /// The number of entries.
  std::size_t size() const noexcept;

 private:
  const Library* destination_;
  Entries entries_;
};

}  // namespace veldra

#endif
