// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_CUSTOM_PROPERTY_HPP
#define VELDRA_CUSTOM_PROPERTY_HPP

#include <veldra/object.hpp>

namespace veldra {

/// The definition of a property that the users of a library made up: a name, and the kind of
/// object that it is for (`ObjectType::Material` or `ObjectType::Composition`). Values are texts
/// and stand at the objects. Names are unique per kind within a library.
class VELDRA_EXPORT CustomProperty : public Object<CustomProperty>,
                                     public Saveable<CustomProperty> {
 public:
  /// A new property: id 0, no library, dirty. The kind of object never changes afterwards.
  static std::shared_ptr<CustomProperty> create(const String& name, ObjectType type);

  /// A new property of the same name and kind of object: id 0, no library, dirty.
  std::shared_ptr<CustomProperty> clone() const;

  ~CustomProperty();

  using Object<CustomProperty>::name;

  /// Renames it; marks it dirty when the name differs. Not while an object in memory has a value of
  /// it by this very pointer: values are ordered by the names. Read another handle to rename it.
  void name(const String& name);

  /// The kind of object that the property is for.
  ObjectType object_type() const noexcept;

  /// Equality of name and kind of object; ids and libraries do not count.
  bool operator==(const CustomProperty& other) const noexcept;
  bool operator!=(const CustomProperty& other) const noexcept;

 protected:
  struct Impl;

  CustomProperty();
  explicit CustomProperty(Impl* impl);

  Impl& impl() noexcept;
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

/// The key of a custom value: a pointer to its property.
///
/// The order looks at the name alone, so that an object has at most one value per property name;
/// equality looks at the kind of object as well. The difference is deliberate.
class VELDRA_EXPORT CustomPropertyKey {
 public:
  /// `property` must not be null.
  CustomPropertyKey(const std::shared_ptr<const CustomProperty>& property);
  CustomPropertyKey(const CustomPropertyKey& other);
  CustomPropertyKey& operator=(const CustomPropertyKey& other);
  ~CustomPropertyKey();

  const CustomProperty& operator*() const noexcept;
  const std::shared_ptr<const CustomProperty>& operator->() const noexcept;
  operator const std::shared_ptr<const CustomProperty>&() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  CustomPropertyKey();

  // Replaced within a map by another of the same name, which is all that the order looks at.
  mutable std::shared_ptr<const CustomProperty> property_;
};

/// By name only, code unit by code unit.
VELDRA_EXPORT bool operator<(const CustomPropertyKey& left, const CustomPropertyKey& right);

/// The same property object, or equal names and kinds of object.
VELDRA_EXPORT bool operator==(const CustomPropertyKey& left, const CustomPropertyKey& right);

/// The values of custom properties that a material or a composition has, at most one per name.
template <class T>
class VELDRA_EXPORT CustomValued {
 public:
  using Values = std::map<CustomPropertyKey, String>;

  /// All values, in the order of the property names.
  const Values& custom_values() const noexcept;

  /// The values for changing; each call marks the owner dirty.
  Values::iterator custom_values_begin(const ToModify&);
  Values::iterator custom_values_end(const ToModify&);

  /// The value of a property; null when there is none, also when the value of that name belongs
  /// to a property for another kind of object, and for an empty pointer.
  odb::nullable<String> custom_value(const std::shared_ptr<const CustomProperty>& property) const;

  /// The value under a property name, whatever kind of object the property is for; null when
  /// there is none. No library is consulted.
  odb::nullable<String> custom_value(const String& name) const;

  /// Sets a value and marks the owner dirty, also when the value is the same. A value under the
  /// same name keeps the property object that it has.
  ///
  /// Throws `InappropriateCustomProperty`, and changes nothing, when the property is for another
  /// kind of object than the owner (a property for kind 0 is for all), or the pointer is empty.
  void custom_value(const std::shared_ptr<const CustomProperty>& property, const String& value);

  /// Sets a value under a property name and marks the owner dirty. A name without a value gets a
  /// new, unsaved property; when the owner is saved, a stored property of that name and kind of
  /// object takes its place.
  void custom_value(const String& name, const String& value);

  /// Removes the value that `custom_value(property)` gives, if any; only then the owner becomes
  /// dirty.
  void clear_custom_value(const std::shared_ptr<const CustomProperty>& property);

  /// Removes the value that `custom_value(name)` gives, if any; only then the owner becomes dirty.
  void clear_custom_value(const String& name);

  /// Removes all values; marks the owner dirty when there were any.
  void clear_custom_values();

 protected:
  CustomValued() = default;
  ~CustomValued() = default;
};

}  // namespace veldra

#endif
