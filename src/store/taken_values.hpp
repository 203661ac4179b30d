// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_TAKEN_VALUES_HPP
#define VELDRA_STORE_TAKEN_VALUES_HPP

#include "store/library_impl.hpp"
#include "store/transactions.hpp"

#include <string>

namespace veldra {

/// What is done about an object with a unique value that another object has already.
struct Verdict {
  enum Kind {
    IsStored,      ///< the stored object with that id is this one
    BecomeStored,  ///< this object gets the values of the stored one with that id
    Overwrite,     ///< this object takes the place of the stored one with that id
    Rename,        ///< it gets another name
    TryAgain       ///< nothing; the host has had its say and is asked anew
  };

  Kind kind;
  unsigned id;
  String name;
};

/// Who decides about taken values: a kind that is nothing but its unique values by itself,
/// materials and compositions by the reactor. Changes nothing.
class TakenValues {
 public:
  TakenValues(Library& library, const WriteTransaction& transaction)
      : library_(library), transaction_(transaction) {}

  /// `message` tells which value is taken. Throws `ObjectNotUnique` when nobody can decide, and
  /// what the reactor throws.
  template <class T>
  Verdict judge(const T& object, const std::string& message) const;

 private:
  template <class T>
  Verdict same_object(const T& object) const;
  template <class T>
  Verdict ask(const T& object, const std::string& message) const;
  template <class T>
  unsigned stored_id(const T& object) const;
  unsigned stored_id(const CustomProperty& property) const;

  Library& library_;
  const WriteTransaction& transaction_;
};

}  // namespace veldra

#endif
