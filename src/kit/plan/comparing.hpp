// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_COMPARING_HPP
#define VELDRA_KIT_PLAN_COMPARING_HPP

#include <veldra/kit/fields.hpp>
#include <veldra/kit/plan.hpp>

#include <map>
#include <string>
#include <vector>

namespace veldra::kit {

/// Under which names the destination will have materials, where these are others than now.
struct NewNames {
  std::map<std::string, std::string> incoming;  ///< by the names in the source
  std::map<std::string, std::string> stored;    ///< by the names in the destination
};

/// What tells objects of a source and of a destination apart, and what does not.
template <class T>
class Comparing {
 public:
  Comparing(const Library& source, const Library& destination);

  /// The fields of which a stored object has another value, but for its name and its tags.
  std::vector<FieldChange> differences(const T& incoming, const T& stored,
                                       const NewNames& materials) const;

  /// The same with name and tags.
  std::vector<FieldChange> all_differences(const T& incoming, const T& stored,
                                           const NewNames& materials) const;

 private:
  void add_if_different(std::vector<FieldChange>& changes, const Field<T>& field, const T& incoming,
                        const T& stored, const NewNames& materials) const;
  Value converted(Value value, const FieldDescription& field) const;

  Fields<T> source_;
  Fields<T> destination_;
  std::vector<const Field<T>*> content_;
  std::vector<const Field<T>*> identity_;  ///< name and tags
};

}  // namespace veldra::kit

#endif
