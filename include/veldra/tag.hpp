// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TAG_HPP
#define VELDRA_TAG_HPP

#include <veldra/object.hpp>

namespace veldra {

/// A word by which materials, compositions and assets are found. Names of tags are unique within
/// a library. A tag cannot be renamed: another name is another tag.
class VELDRA_EXPORT Tag : public Object<Tag>, public Saveable<Tag> {
 public:
  /// A new tag: id 0, no library, dirty.
  static std::shared_ptr<Tag> create(const String& name);

  /// A new tag of the same name: id 0, no library, dirty.
  std::shared_ptr<Tag> clone() const;

  ~Tag();

  /// Equality of the names, exactly; ids and libraries do not count.
  bool operator==(const Tag& other) const noexcept;
  bool operator!=(const Tag& other) const noexcept;

 protected:
  struct Impl;

  Tag();
  explicit Tag(Impl* impl);

  Impl& impl() noexcept;
  const Impl& impl() const noexcept;

 private:
  friend class odb::access;
  friend class ObjectAccess;

  std::unique_ptr<Impl> impl_;
};

/// Equality of tag lists: the same length and, at each place, the same tag or tags of equal
/// names. The order counts; ids and libraries do not.
VELDRA_EXPORT bool operator==(const std::vector<std::shared_ptr<Tag>>& left,
                              const std::vector<std::shared_ptr<Tag>>& right);
VELDRA_EXPORT bool operator!=(const std::vector<std::shared_ptr<Tag>>& left,
                              const std::vector<std::shared_ptr<Tag>>& right);

}  // namespace veldra

#endif
