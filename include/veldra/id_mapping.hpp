// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_ID_MAPPING_HPP
#define VELDRA_ID_MAPPING_HPP

#include <veldra/export.hpp>
#include <veldra/values.hpp>

#include <cstddef>
#include <map>

namespace veldra {

class Library;

/// Which objects of a library stand for which objects of other libraries, and how they came to be
/// there. Saving and copying fill it; passing the same mapping again makes later calls use the
/// objects that earlier ones made.
///
///     veldra::IdMapping mapping(office.get());
///     office->copyAll(supplier, mapping);
///     veldra::IdMapping::Value oak;
///     if (mapping.compute({{veldra::ObjectType::Material, 17}, supplier.get()}, oak)) {
///       // material 17 of the supplier is material oak.id of the office now
///     }
///
/// It keeps no library alive; use it no longer than the libraries whose pointers it holds.
class VELDRA_EXPORT IdMapping {
 public:
  /// How an object came to stand for another.
  enum Status : int {
    Inserted = 0,  ///< as a new object
    Existing = 1,  ///< it was there already and was taken as it is; nothing was written
    Updated = 2    ///< it was there already and was overwritten
  };

  /// An object of a source library. Ordered by the library, then by kind, then by id.
  struct VELDRA_EXPORT Key {
    ObjectKey key;
    const Library* source;

    Key(const ObjectKey& key, const Library* source);

    bool operator==(const Key& other) const;
    bool operator!=(const Key& other) const;
    bool operator<(const Key& other) const;
  };

  /// The object of the destination that stands for it.
  struct VELDRA_EXPORT Value {
    unsigned id;
    Status status;

    Value();  ///< id 0, inserted
    Value(unsigned id, Status status);
  };

  using Entries = std::map<Key, Value>;
  using const_iterator = Entries::const_iterator;

  /// An empty mapping into `destination`, of which only the pointer is kept.
  explicit IdMapping(const Library* destination);

  /// The library that the ids of the values belong to.
  const Library* destination() const noexcept;

  /// Sets the value of a key, whether it has one or not.
  void assign(const Key& key, const Value& value);

  bool has(const Key& key) const;

  /// Writes the value of a key to `value` and returns true; leaves `value` alone and returns false
  /// when it has none.
  bool compute(const Key& key, Value& value) const;

  /// Removes a key and returns whether it was there.
  bool remove(const Key& key);

  /// The entries in the order of the keys.
  const_iterator begin() const noexcept;
  const_iterator end() const noexcept;
  std::size_t size() const noexcept;

 private:
  const Library* destination_;
  Entries entries_;
};

}  // namespace veldra

#endif
