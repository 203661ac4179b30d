// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_EQUALITY_HPP
#define VELDRA_OBJECTS_EQUALITY_HPP

#include "objects/description.hpp"

#include <algorithm>

namespace veldra {

// Two references are equal when they are to the same object, or to equal ones.

template <class T, class Equal>
bool same_or(const std::shared_ptr<T>& left, const std::shared_ptr<T>& right, Equal equal) {
  return left == right || (left != nullptr && right != nullptr && equal(*left, *right));
}

template <class T>
bool same_or_equal(const std::shared_ptr<T>& left, const std::shared_ptr<T>& right) {
  return same_or(left, right, [](const T& a, const T& b) { return a == b; });
}

template <class T>
bool same_or_equal_names(const std::shared_ptr<T>& left, const std::shared_ptr<T>& right) {
  return same_or(left, right, [](const T& a, const T& b) { return a.name() == b.name(); });
}

// Whether two records agree in a member.

template <class Field>
bool agree(ByValue, const Field& left, const Field& right) {
  return left == right;
}

template <class Field>
bool agree(ByPresence, const odb::nullable<Field>& left, const odb::nullable<Field>& right) {
  return left.null() == right.null();
}

template <class T>
bool agree(ByName, const std::shared_ptr<T>& left, const std::shared_ptr<T>& right) {
  return same_or_equal_names(left, right);
}

template <class T>
bool agree(ByName, const std::vector<std::shared_ptr<T>>& left,
           const std::vector<std::shared_ptr<T>>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), same_or_equal_names<T>);
}

template <class T>
bool agree(ByContents, const std::shared_ptr<T>& left, const std::shared_ptr<T>& right) {
  return same_or_equal(left, right);
}

template <class Container>
bool agree(ByContents, const Container& left, const Container& right) {
  return left == right;
}

template <class Values>
struct Comparison {
  const Values& left;
  const Values& right;
  bool equal = true;

  // Compares nothing any more once two members differ.
  template <class Role, class How, class Field>
  void operator()(Member<Role, How, Values, Field> member) {
    equal = equal && agree(How(), left.*member.field, right.*member.field);
  }
};

/// Whether all that `Values` describes is equal.
template <class Values>
bool equal_values(const Values& left, const Values& right) {
  Comparison<Values> comparison{left, right};
  for_each_member(DescribedBy<Values>(), comparison);
  return comparison.equal;
}

}  // namespace veldra

#endif
