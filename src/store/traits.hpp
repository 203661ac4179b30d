// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_TRAITS_HPP
#define VELDRA_STORE_TRAITS_HPP

#include "foundation/encoding.hpp"
#include "objects/object_access.hpp"

#include <odb/sqlite/traits.hxx>
#include <odb/traits.hxx>

#include <limits>
#include <memory>

namespace odb {

namespace sqlite {

/// Texts in columns of type TEXT.
template <>
class value_traits<veldra::String, id_text> {
 public:
  using value_type = veldra::String;
  using query_type = veldra::String;
  using image_type = details::buffer;

  static void set_value(veldra::String& value, const details::buffer& buffer, std::size_t size,
                        bool is_null) {
    veldra::StringAccess::assign(value, buffer.data(), is_null ? 0 : size);
  }

  static void set_image(details::buffer& buffer, std::size_t& size, bool& is_null,
                        const veldra::String& value) {
    const std::size_t units = veldra::text_length(value.c_str());
    size = veldra::utf8_size(value.c_str(), units);
    if (size > buffer.capacity()) buffer.capacity(size);
    veldra::encode_utf8(value.c_str(), units, buffer.data());
    is_null = false;
  }
};

/// Indices. A column holds wider numbers; one that does not fit becomes the largest.
template <>
class value_traits<unsigned, id_integer> : public default_value_traits<unsigned, id_integer> {
 public:
  static void set_value(unsigned& value, long long stored, bool is_null) {
    constexpr unsigned largest = std::numeric_limits<unsigned>::max();
    const bool fits = 0 <= stored && stored <= static_cast<long long>(largest);
    value = is_null ? 0 : fits ? static_cast<unsigned>(stored) : largest;
  }
};

}  // namespace sqlite

/// Objects that are loaded are made like all others. (The runtime's own way frees an object twice
/// when memory runs out half-way.)
template <class T>
class access::object_factory<T, std::shared_ptr<T>> {
 public:
  using object_type = T;
  using pointer_type = std::shared_ptr<T>;

  static pointer_type create() { return veldra::ObjectAccess::make<T>(); }
};

}  // namespace odb

#endif
