// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/custom_property_impl.hpp"
#include "objects/handle_members.hpp"

namespace veldra {

VELDRA_HANDLE_MEMBERS(CustomProperty)

std::shared_ptr<CustomProperty> CustomProperty::create(const String& name, ObjectType type) {
  const auto property = ObjectAccess::make<CustomProperty>(name);
  property->impl().object_type = type;
  return property;
}

std::shared_ptr<CustomProperty> CustomProperty::clone() const { return clone_of(*this); }

void CustomProperty::name(const String& name) { change(impl(), impl().name, name); }

ObjectType CustomProperty::object_type() const noexcept { return impl().object_type; }

bool CustomProperty::operator==(const CustomProperty& other) const noexcept {
  return name() == other.name() && equal_values<CustomPropertyValues>(impl(), other.impl());
}

bool CustomProperty::operator!=(const CustomProperty& other) const noexcept {
  return !(*this == other);
}

CustomPropertyKey::CustomPropertyKey() = default;
CustomPropertyKey::CustomPropertyKey(const std::shared_ptr<const CustomProperty>& property)
    : property_(property) {}
CustomPropertyKey::CustomPropertyKey(const CustomPropertyKey& other) = default;
CustomPropertyKey& CustomPropertyKey::operator=(const CustomPropertyKey& other) = default;
CustomPropertyKey::~CustomPropertyKey() = default;

const CustomProperty& CustomPropertyKey::operator*() const noexcept { return *property_; }

const std::shared_ptr<const CustomProperty>& CustomPropertyKey::operator->() const noexcept {
  return property_;
}

CustomPropertyKey::operator const std::shared_ptr<const CustomProperty>&() const noexcept {
  return property_;
}

// Deliberate: the order, and with it what a map finds, looks at the name alone.
bool operator<(const CustomPropertyKey& left, const CustomPropertyKey& right) {
  return left->name() < right->name();
}

bool operator==(const CustomPropertyKey& left, const CustomPropertyKey& right) {
  return same_or_equal<const CustomProperty>(left, right);
}

}  // namespace veldra
