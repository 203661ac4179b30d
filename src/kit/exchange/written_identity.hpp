// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_WRITTEN_IDENTITY_HPP
#define VELDRA_KIT_EXCHANGE_WRITTEN_IDENTITY_HPP

#include <veldra/kit/exchange.hpp>
#include <veldra/library.hpp>

#include <map>
#include <string>

namespace veldra::kit {

/// Under which GUID and ids the objects of a library are written: its own, or those of the library
/// of which it is a part.
class WrittenIdentity {
 public:
  /// The rules must outlive it.
  WrittenIdentity(const Library& library, const WriteRules& rules)
      : whole_(rules.part_of), guid_((whole_ ? whole_->guid : library.guid()).utf8()) {}

  const std::string& guid() const { return guid_; }

  template <class T>
  unsigned id_of(const T& object) const {
    if (whole_ == nullptr) return object.id();
    return whole_->ids.at({ObjectTraits<T>::type, object.id()});
  }

 private:
  const WholeLibrary* whole_;
  std::string guid_;
};

}  // namespace veldra::kit

#endif
