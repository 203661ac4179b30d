// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_STORED_OBJECTS_HPP
#define VELDRA_KIT_PLAN_STORED_OBJECTS_HPP

#include <veldra/library.hpp>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace veldra::kit {

/// Finds the objects of a kind in the destination by their names in the source. Unless the source
/// has far fewer objects than the destination, or where names must be found without regard to case,
/// the names of all are asked for at once; else each is. An object that is found need not be
/// readable.
template <class T>
class StoredObjects {
 public:
  StoredObjects(const Library& destination, unsigned long long incoming, bool folds_names);

  /// The ids; 0 for none.
  unsigned with_name(const std::string& name) const;
  unsigned with_folded_name(const std::string& name) const;

 private:
  void enter(const std::string& name, unsigned id);

  const Library& destination_;
  bool folds_names_;
  bool all_;
  std::unordered_map<std::string, unsigned> by_name_;
  std::unordered_map<std::string, unsigned> by_folded_name_;
};

/// Which materials of the destination have which codes. They are read when one is asked for, as few
/// sources have codes.
class StoredCodes {
 public:
  explicit StoredCodes(const Library& destination) : destination_(destination) {}

  /// The id; 0 for none.
  unsigned holder_of(const std::string& code);

 private:
  void read();

  const Library& destination_;
  std::optional<std::unordered_map<std::string, unsigned>> ids_;
};

/// The same of custom properties, which are told by name and kind of object.
class StoredProperties {
 public:
  explicit StoredProperties(const Library& destination);

  unsigned with_name(const CustomProperty& incoming) const;

 private:
  std::map<std::pair<String, ObjectType>, unsigned> ids_;
};

}  // namespace veldra::kit

#endif
