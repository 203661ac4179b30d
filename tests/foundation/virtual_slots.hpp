// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_FOUNDATION_VIRTUAL_SLOTS_HPP
#define VELDRA_TESTS_FOUNDATION_VIRTUAL_SLOTS_HPP

namespace veldra_tests {

/// The function in a slot of the virtual table of an object, as the Itanium C++ ABI lays it out:
/// the object starts with a pointer to its table, which holds the virtual functions in the order
/// of their declaration. A destructor takes two slots: the first ends the object, the second also
/// frees its memory. The object is passed as the first argument.
///
/// Hosts that were compiled earlier call through these slots, so their order never changes.
template <class Function>
Function* virtual_slot(const void* object, int slot) {
  using Table = Function* const*;
  return (*static_cast<const Table*>(object))[slot];
}

}  // namespace veldra_tests

#endif
