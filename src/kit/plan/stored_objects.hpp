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
  /// All are read as well where names are looked up without regard to case, or codes; whether these
  /// are is asked last, as finding out takes time.
  StoredObjects(const Library& destination, unsigned long long incoming, bool folds_names,
                const std::function<bool()>& has_codes);

  /// The ids; 0 for none.
  unsigned with_name(const std::string& name) const;
  unsigned with_folded_name(const std::string& name) const;
  unsigned with_code(const std::string& code) const;

 private:
  void enter(const T& object);

  const Library& destination_;
  bool folds_names_;
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
