// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_CUSTOM_PROPERTY_HPP
#define VELDRA_CUSTOM_PROPERTY_HPP

#include <veldra/object.hpp>

namespace veldra {

/// The definition of a property that the users of a library have made up, such as "Fire class":
///
/// - a name,
/// - the kind of object that can have a value: `ObjectType::Material` or `ObjectType::Composition`.
///
/// The values are texts, and objects hold them (`CustomValued`). Two properties may have the same
/// name if they are for different kinds of object.
///
/// A property for the kind 0, `ObjectType{}`, is for objects of both kinds.
class VELDRA_EXPORT CustomProperty : public Object<CustomProperty>,
                                     public Saveable<CustomProperty> {
 public:
  /// Makes a new property: id 0, no library, dirty. The kind of object never changes afterwards.
  ///
  /// A property of that name and kind in the library takes its place when it is saved.
  ///
  /// Throws: `std::bad_alloc`.
  static std::shared_ptr<CustomProperty> create(const String& name, ObjectType type);

  /// Makes a new property of the same name and kind of object: id 0, no library, dirty.
  ///
  /// Throws: `std::bad_alloc`.
  std::shared_ptr<CustomProperty> clone() const;

  /// Destroys the handle. The property in the library stays.
  ~CustomProperty();

  using Object<CustomProperty>::name;

  /// Renames the property; every object with a value shows the new name once the property is saved.
  /// Marks the property dirty if the name differs.
  ///
  /// An object in memory orders its values by the names of their properties. So a property must not
  /// be renamed through a pointer that such an object holds: read the property anew from the
  /// library, rename that one and save it.
  ///
  /// Throws: `std::bad_alloc`.
  void name(const String& name);

  /// The kind of object that can have a value of the property.
  ObjectType object_type() const noexcept;

  /// Whether names and kinds of object are equal. Ids and libraries do not count.
  bool operator==(const CustomProperty& other) const noexcept;

  /// The opposite of `==`.
  bool operator!=(const CustomProperty& other) const noexcept;

 protected:
  /// The values of the property.
  struct Impl;

  /// A clean property of defaults, which the library fills with a row of the file.
  CustomProperty();

  /// A property that takes over `impl`.
  explicit CustomProperty(Impl* impl);

  /// The values, for the library to write.
  Impl& impl() noexcept;

  /// The values, for the library to read.
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

/// The key of a custom value: a pointer to its property, which is never null.
///
/// - Keys are ordered by the names alone, so that an object has at most one value per name.
/// - Keys are equal when names and kinds of object are equal. The difference is deliberate.
class VELDRA_EXPORT CustomPropertyKey {
 public:
  /// Makes the key of a property, which must not be null.
  CustomPropertyKey(const std::shared_ptr<const CustomProperty>& property);

  /// Copies the pointer.
  CustomPropertyKey(const CustomPropertyKey& other);

  /// Copies the pointer.
  CustomPropertyKey& operator=(const CustomPropertyKey& other);

  /// Releases the pointer.
  ~CustomPropertyKey();

  /// The property.
  const CustomProperty& operator*() const noexcept;

  /// Access to the property: `key->name()`.
  const std::shared_ptr<const CustomProperty>& operator->() const noexcept;

  /// The pointer to the property.
  operator const std::shared_ptr<const CustomProperty>&() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  CustomPropertyKey();

  // Replaced within a map by another of the same name, which is all that the order looks at.
  mutable std::shared_ptr<const CustomProperty> property_;
};

/// Orders keys by the names of the properties alone, code unit by code unit.
VELDRA_EXPORT bool operator<(const CustomPropertyKey& left, const CustomPropertyKey& right);

/// Whether two keys have the same property object, or properties with equal names and kinds of
/// object.
VELDRA_EXPORT bool operator==(const CustomPropertyKey& left, const CustomPropertyKey& right);

/// The values of custom properties that a material or a composition has, at most one per name.
///
///     oak->custom_value("Fire class", "D-s2,d0");
///     const auto value = oak->custom_value("Fire class");
///     if (!value.null()) print(value.get().utf8());
///
/// A value is a text. The program `veldra` reads some values as numbers, by the names of their
/// properties, such as "Density [kg/m3]".
template <class T>
class VELDRA_EXPORT CustomValued {
 public:
  /// The container of the values.
  using Values = std::map<CustomPropertyKey, String>;

  /// All values, in the order of the names of their properties. Valid until the object is changed,
  /// saved or destroyed.
  const Values& custom_values() const noexcept;

  /// The first value, to be changed through the iterator. Every call marks the owner dirty.
  Values::iterator custom_values_begin(const ToModify&);

  /// The end of the values, to go with `custom_values_begin`. Every call marks the owner dirty.
  Values::iterator custom_values_end(const ToModify&);

  /// The value of a property. Null if:
  ///
  /// - there is no value under the name of the property,
  /// - the value under that name is one of a property for another kind of object,
  /// - `property` is empty.
  ///
  /// Throws: `std::bad_alloc`.
  odb::nullable<String> custom_value(const std::shared_ptr<const CustomProperty>& property) const;

  /// The value under the name of a property, for whichever kind of object the property is. Null if
  /// there is none. Looks into the object alone, not into a library.
  ///
  /// Throws: `std::bad_alloc`.
  odb::nullable<String> custom_value(const String& name) const;

  /// Sets the value of a property. Marks the owner dirty, also if the value is the same. A value
  /// that is there under that name is replaced, and keeps its property object.
  ///
  /// Throws, and changes nothing:
  /// - `InappropriateCustomProperty`: `property` is for another kind of object, or is empty.
  /// - `std::bad_alloc`.
  void custom_value(const std::shared_ptr<const CustomProperty>& property, const String& value);

  /// Sets the value under the name of a property. Marks the owner dirty, also if the value is the
  /// same.
  ///
  /// If there is no value under that name, the object gets a new property for its own kind. When
  /// the owner is saved, the property of that name and kind in the library takes the place of the
  /// new one; if there is none, the new one is saved.
  ///
  /// Throws: `std::bad_alloc`.
  void custom_value(const String& name, const String& value);

  /// Removes the value that `custom_value(property)` returns. Marks the owner dirty if there is
  /// one, and does nothing otherwise. The property stays in the library.
  void clear_custom_value(const std::shared_ptr<const CustomProperty>& property);

  /// Removes the value that `custom_value(name)` returns. Marks the owner dirty if there is one,
  /// and does nothing otherwise. The property stays in the library.
  void clear_custom_value(const String& name);

  /// Removes all values. Marks the owner dirty if there is one. The properties stay in the library.
  void clear_custom_values();

 protected:
  /// A part of an object, not an object.
  CustomValued() = default;

  /// A part of an object, not an object.
  ~CustomValued() = default;
};

}  // namespace veldra

#endif
