// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_FOUNDATION_CONSTANT_TEXT_HPP
#define VELDRA_FOUNDATION_CONSTANT_TEXT_HPP

#include <cstddef>
#include <utility>

namespace veldra {

/// A constant text as a real array of the interface's code units. A `u""` literal is an array of
/// `char16_t`, a type of its own, and must not be read through a pointer to `unsigned short`.
template <std::size_t size>
struct ConstantText {
  unsigned short units[size];
};

template <std::size_t size, std::size_t... index>
constexpr ConstantText<size> constant_text(const char (&ascii)[size],
                                           std::index_sequence<index...>) {
  return {{static_cast<unsigned short>(ascii[index])...}};
}

template <std::size_t size>
constexpr ConstantText<size> constant_text(const char (&ascii)[size]) {
  return constant_text(ascii, std::make_index_sequence<size>());
}

}  // namespace veldra

#endif
