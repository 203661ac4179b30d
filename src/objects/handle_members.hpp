// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_HANDLE_MEMBERS_HPP
#define VELDRA_OBJECTS_HANDLE_MEMBERS_HPP

#include "objects/completeness.hpp"
#include "objects/copies.hpp"
#include "objects/object_members.hpp"

// What every handle class defines alike and no template can define for it: the constructors and
// the destructor, which own the record, and the way to it.
#define VELDRA_HANDLE_MEMBERS(Class)                                                \
  Class::Class() : impl_(new Impl) {                                                \
    static_assert(is_described<Impl>(), "a member of " #Class " is not described"); \
  }                                                                                 \
  Class::Class(Impl* impl) : impl_(impl) {}                                         \
  Class::~Class() = default;                                                        \
  Class::Impl& Class::impl() noexcept { return *impl_; }                            \
  const Class::Impl& Class::impl() const noexcept { return *impl_; }                \
  template class Object<Class>;

// What the classes define alike that are nothing but a name.
#define VELDRA_NAMED_MEMBERS(Class)                                                            \
  std::shared_ptr<Class> Class::create(const String& name) {                                   \
    return ObjectAccess::make<Class>(name);                                                    \
  }                                                                                            \
  std::shared_ptr<Class> Class::clone() const { return clone_of(*this); }                      \
  bool Class::operator==(const Class& other) const noexcept { return name() == other.name(); } \
  bool Class::operator!=(const Class& other) const noexcept { return !(*this == other); }

#endif
