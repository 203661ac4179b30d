// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_OF_KIND_HPP
#define VELDRA_STORE_OF_KIND_HPP

namespace veldra {

/// A kind as an argument of a function.
template <class T>
struct OfKind {
  using type = T;
};

}  // namespace veldra

#endif
