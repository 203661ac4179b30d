// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_STORED_OBJECTS_HPP
#define VELDRA_KIT_PLAN_STORED_OBJECTS_HPP

#include <veldra/library.hpp>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace veldra::kit {

/// Finds the objects of a kind in the destination by what the source knows of them. Where the
/// source has about as many objects as the destination, or names must be found without regard to
/// case, all of these are read once; else each is asked for.
template <class T>
class StoredObjects {
 public:
  /// `reads_all` where codes or names without regard to case are looked up.
  StoredObjects(const Library& destination, unsigned long long incoming, bool reads_all);

  /// The ids; 0 for none.
  unsigned with_name(const std::string& name) const;
  unsigned with_folded_name(const std::string& name) const;
  unsigned with_code(const std::string& code) const;

 private:
  void enter(const T& object);

  const Library& destination_;
  bool all_;
  std::unordered_map<std::string, unsigned> by_name_;
  std::unordered_map<std::string, unsigned> by_folded_name_;
  std::unordered_map<std::string, unsigned> by_code_;
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
