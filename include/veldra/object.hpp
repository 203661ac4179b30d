// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECT_HPP
#define VELDRA_OBJECT_HPP

#include <veldra/export.hpp>
#include <veldra/string.hpp>
#include <veldra/values.hpp>

#include <odb/nullable.hxx>

#include <map>
#include <memory>
#include <vector>

namespace odb {
class access;
}

namespace veldra {

class Library;
class ObjectAccess;

/// The part that objects of every kind share: an id, a name, a library and a dirty mark.
///
/// Objects are handles that `std::shared_ptr` holds. They are made by the `create` functions of
/// their classes, or read from a `Library`:
///
///     auto oak = veldra::Material::create("Oak");         // new: id 0, no library, dirty
///     oak->thicknesses(veldra::toModify).insert(22.0);
///     oak->save(library);                                 // now it has an id, and is clean
///     auto same = library->get<veldra::Material>("Oak");  // another handle on the same row
///
/// `T` is the class itself (`class Tag : public Object<Tag>`).
///
/// Lifetime: an object may outlive its library and does not keep it open. References that getters
/// return are valid until the object is changed, saved or destroyed.
///
/// Thread rule: an object and its library are used from one thread at a time.
template <class T>
class VELDRA_EXPORT Object : public std::enable_shared_from_this<T> {
 public:
  /// Handles do not copy: two of them would own the same values. `clone()` makes another object.
  Object(const Object&) = delete;

  /// Handles are not assigned. `Material` and `Composition` can take over the values of another
  /// one by an operator of their own.
  Object& operator=(const Object&) = delete;

  /// The key of the object within its library; 0 in an object that was never saved.
  ///
  /// An object whose library was closed keeps its id, and so do all objects to which it refers.
  /// Saving and removing then go by these ids:
  ///
  /// - In the same file, opened again, the ids are right.
  /// - In any other file the ids are wrong: they belong to other objects there, or to none.
  ///
  /// To bring an object into another file, save it there while its own library is open. Once that
  /// library is closed, only clones can be saved:
  ///
  /// 1. Make a `clone()` of the object.
  /// 2. Replace in the clone every object to which it refers by a clone as well, since the clone
  ///    shares them with the object.
  /// 3. Clear the references to assets.
  ///
  /// Thicknesses are not converted on this way.
  unsigned id() const noexcept;

  /// The name by which users find the object. Unique per kind within a library, but for assets and
  /// for custom properties (`CustomProperty`).
  const String& name() const noexcept;

  /// The library from which the object was read, or to which it was saved. Empty for:
  ///
  /// - a new object or a clone,
  /// - an object that `Library::remove` has removed,
  /// - an object whose library was closed.
  std::shared_ptr<Library> library() const;

  /// Whether the object may differ from the contents of its library: it is new, or a function has
  /// marked it dirty since it was read or saved. `save` writes dirty objects only.
  bool isDirty() const noexcept;

 protected:
  /// Objects are made by their classes.
  Object() = default;

  /// Objects are destroyed through their classes.
  ~Object() = default;
};

/// The part that makes an object storable. All kinds have it, except assets.
template <class T>
class VELDRA_EXPORT Saveable {
 public:
  /// Saves the object into `library`, in one transaction, after the objects to which it refers. See
  /// `Library::save`.
  ///
  /// Returns the object that stands for it in `library`:
  ///
  /// - this object, if it belongs to no library or to `library`;
  /// - a saved copy, if it belongs to another library;
  /// - an empty pointer, if `library` is empty. Nothing is written then.
  ///
  /// Throws:
  /// - the exceptions of `Library::save`.
  /// - `std::bad_weak_ptr`: no `std::shared_ptr` holds the object.
  std::shared_ptr<T> save(const std::shared_ptr<Library>& library);

  /// Saves the object into its own library, as `save(library)` does. Returns false and writes
  /// nothing if it belongs to none.
  ///
  /// Throws: the exceptions of `save(library)`.
  bool save();

 protected:
  /// A part of an object, not an object.
  Saveable() = default;

  /// A part of an object, not an object.
  ~Saveable() = default;
};

/// A list of tags in an order that is kept. The same tag may stand in it more than once.
///
/// Dirty mark: every function that can change the list marks the owner dirty, also when it changes
/// nothing.
///
/// Throws: nothing but `std::bad_alloc`.
template <class T>
class VELDRA_EXPORT Tagged {
 public:
  /// The tags of the object. Valid until the object is changed, saved or destroyed.
  const std::vector<std::shared_ptr<Tag>>& tags() const noexcept;

  /// The tags, to be changed through the reference. Marks the owner dirty. No entry may be null
  /// when the owner is saved.
  std::vector<std::shared_ptr<Tag>>& tags(const ToModify&);

  /// Appends a tag of any library or of none, also if it is in the list already. Marks the owner
  /// dirty.
  void addTag(const std::shared_ptr<Tag>& tag);

  /// Appends a new tag of that name; null means the empty name. Marks the owner dirty. When the
  /// owner is saved, the tag of that name in the library takes the place of the new one.
  ///
  /// From UTF-8: `addTag(String("oak").c_str())`.
  void addTag(const unsigned short* name);

  /// Removes every entry with the id of `tag`. Marks the owner dirty, also when nothing is removed.
  ///
  /// All new tags have the id 0: to remove one of them removes them all. A null `tag` removes
  /// nothing.
  void removeTag(const std::shared_ptr<Tag>& tag);

  /// Removes every entry of that name. Marks the owner dirty, also when nothing is removed.
  void removeTag(const unsigned short* name);

 protected:
  /// A part of an object, not an object.
  Tagged() = default;

  /// A part of an object, not an object.
  ~Tagged() = default;
};

}  // namespace veldra

#endif
