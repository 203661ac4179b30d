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

/// What an object of every kind has: an id, a name, a library and a dirty flag.
///
/// Objects are handles. They are held by `std::shared_ptr`, and are made by the `create` functions
/// of their classes or read from a `Library`:
///
///     auto oak = veldra::Material::create("Oak");         // new: id 0, no library, dirty
///     oak->thicknesses(veldra::toModify).insert(22.0);
///     oak->save(library);                                 // now it has an id, and is clean
///     auto same = library->get<veldra::Material>("Oak");  // another handle on the same row
///
/// `T` is the class itself (`class Tag : public Object<Tag>`). References that getters give are
/// valid until the object is changed, saved or destroyed.
///
/// Thread rule: an object and its library are used from one thread at a time.
template <class T>
class VELDRA_EXPORT Object : public std::enable_shared_from_this<T> {
 public:
  /// Handles do not copy: two of them would own one record. `clone()` makes another object.
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  /// The key of the object within its library; 0 while it was never saved.
  ///
  /// An object whose library was closed keeps its id, and so does all that it refers to; saving and
  /// removing go by these ids. That is right for the same file opened again and wrong for any
  /// other, where they are ids of other objects or of none. The way into another file is to save
  /// the object there while its own library is open. Later it takes a `clone()` in which all that
  /// it refers to, and shares with the object, is replaced by clones too, and assets are cleared;
  /// thicknesses are not converted then.
  unsigned id() const noexcept;

  const String& name() const noexcept;

  /// The library that the object was read from or saved to. Empty for a new object, a clone, a
  /// removed object, and when that library was closed.
  std::shared_ptr<Library> library() const;

  /// Whether the object differs from what its library holds. Saving writes dirty objects only.
  bool isDirty() const noexcept;

 protected:
  Object() = default;
  ~Object() = default;
};

/// What makes an object storable: all kinds but the assets.
template <class T>
class VELDRA_EXPORT Saveable {
 public:
  /// Saves the object, and first what it refers to, into `library`, in one transaction. Returns
  /// the object that stands for it there: this very object when it belongs to no library or to
  /// that one, else a copy; empty when `library` is empty. See `Library::save`.
  ///
  /// Throws what `Library::save` throws, and `std::bad_weak_ptr` when no `std::shared_ptr` holds
  /// the object.
  std::shared_ptr<T> save(const std::shared_ptr<Library>& library);

  /// Saves the object into the library that it belongs to. Returns false and writes nothing when
  /// it belongs to none; throws as `save(library)` does.
  bool save();

 protected:
  Saveable() = default;
  ~Saveable() = default;
};

/// A list of tags, in an order that is kept. The same tag may be in it more than once.
///
/// Every operation that can change the list marks the owner dirty, also when nothing changes.
template <class T>
class VELDRA_EXPORT Tagged {
 public:
  const std::vector<std::shared_ptr<Tag>>& tags() const noexcept;

  /// The list for changing; marks the owner dirty. Entries must not be null when it is saved.
  std::vector<std::shared_ptr<Tag>>& tags(const ToModify&);

  /// Appends a tag, of whichever library, without looking for duplicates.
  void addTag(const std::shared_ptr<Tag>& tag);

  /// Appends a new, unsaved tag of that name (null: the empty name). When the owner is saved, a
  /// stored tag of the same name takes its place. From UTF-8: `addTag(String("oak").c_str())`.
  void addTag(const unsigned short* name);

  /// Removes every entry that has the id of `tag`. Unsaved tags all have id 0, so removing one of
  /// them removes them all. A null `tag` removes nothing.
  void removeTag(const std::shared_ptr<Tag>& tag);

  /// Removes every entry of that name.
  void removeTag(const unsigned short* name);

 protected:
  Tagged() = default;
  ~Tagged() = default;
};

}  // namespace veldra

#endif
