// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TAG_HPP
#define VELDRA_TAG_HPP

#include <veldra/object.hpp>

namespace veldra {

/// A word by which materials, compositions and assets are found, such as "exterior". Names of tags
/// are unique within a library. A tag cannot be renamed: another name is another tag.
///
///     oak->addTag(veldra::Tag::create("exterior"));
///     veldra::MaterialCriteria exterior;
///     exterior.tags = {"exterior"};
///     library->get(found, exterior);
class VELDRA_EXPORT Tag : public Object<Tag>, public Saveable<Tag> {
 public:
  /// Makes a new tag: id 0, no library, dirty. A tag of that name in the library takes its place
  /// when it is saved.
  ///
  /// Throws: `std::bad_alloc`.
  static std::shared_ptr<Tag> create(const String& name);

  /// Makes a new tag of the same name: id 0, no library, dirty.
  ///
  /// Throws: `std::bad_alloc`.
  std::shared_ptr<Tag> clone() const;

  /// Destroys the handle. The tag in the library stays.
  ~Tag();

  /// Whether the names are equal, code unit by code unit. Ids and libraries do not count.
  bool operator==(const Tag& other) const noexcept;

  /// The opposite of `==`.
  bool operator!=(const Tag& other) const noexcept;

 protected:
  /// The values of the tag.
  struct Impl;

  /// A clean tag of defaults, which the library fills with a row of the file.
  Tag();

  /// A tag that takes over `impl`.
  explicit Tag(Impl* impl);

  /// The values, for the library to write.
  Impl& impl() noexcept;

  /// The values, for the library to read.
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

/// Whether two tag lists are equal: they have the same length and, at each place, the same tag or
/// tags of equal names. The order counts. Ids and libraries do not.
VELDRA_EXPORT bool operator==(const std::vector<std::shared_ptr<Tag>>& left,
                              const std::vector<std::shared_ptr<Tag>>& right);

/// The opposite of `==`.
VELDRA_EXPORT bool operator!=(const std::vector<std::shared_ptr<Tag>>& left,
                              const std::vector<std::shared_ptr<Tag>>& right);

}  // namespace veldra

#endif
