// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_SHARED_NAME_HPP
#define VELDRA_OBJECTS_SHARED_NAME_HPP

#include <veldra/string.hpp>

#include <atomic>
#include <utility>

namespace veldra {

/// The name of an object that others refer to. In a list each object has such objects of its own,
/// with the same names over and over: their copies share the text, which never changes. As large as
/// one pointer, which the standard ones are not: a material of a list has eight.
///
/// Thread rule: as for `String`; copies count as separate.
class SharedName {
 public:
  SharedName() noexcept = default;
  SharedName(const String& name) : text_(name.empty() ? nullptr : new Text(name)) {}

  SharedName(const SharedName& other) noexcept : text_(other.text_) {
    if (text_ != nullptr) text_->owners.fetch_add(1, std::memory_order_relaxed);
  }

  SharedName(SharedName&& other) noexcept { std::swap(text_, other.text_); }

  /// Other copies keep the former name. A reference to it is valid no longer.
  SharedName& operator=(SharedName other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }

  ~SharedName() {
    // Whoever lets go last has seen all that others have read.
    if (text_ != nullptr && text_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      delete text_;
    }
  }

  operator const String&() const noexcept {
    static const String empty;
    return text_ == nullptr ? empty : text_->text;
  }

 private:
  struct Text {
    explicit Text(const String& name) : text(name) {}

    const String text;
    std::atomic<unsigned> owners{1};
  };

  Text* text_ = nullptr;
};

/// Makes a name one that shares its text with no other.
inline void own(SharedName& name) { name = SharedName(static_cast<const String&>(name)); }
inline void own(String&) noexcept {}

}  // namespace veldra

#endif
