// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_OBJECTS_CORE_LAYERS_HPP
#define VELDRA_OBJECTS_CORE_LAYERS_HPP

#include <veldra/composition.hpp>

#include <odb/nullable.hxx>

#include <cstdint>

// The arithmetic of the indices of a composition's layers. Indices are 32 bits wide and wrap
// around, as they are stored.

namespace veldra {

/// The first and the last layer of the core.
struct Core {
  unsigned first;
  unsigned last;
};

/// The core that begins at `index`; it ends there too where it would end before.
Core with_first(const Core& core, unsigned index, const Composition::Layers& layers);

/// The core that ends at `index`, or at the last layer; it begins there too where it would begin
/// behind it.
Core with_last(const Core& core, unsigned index, const Composition::Layers& layers);

/// The structural layer within the core when `index` is asked for: this one, or for one outside
/// of the core the nearest in it that may carry the structure, or else the end of the core.
/// Throws `std::out_of_range` when the core goes beyond the layers and is searched.
unsigned structure_within(const Core& core, unsigned index, const Composition::Layers& layers);

/// Where the index of a layer goes when the layer at `from` moves to `to`; null: it stays.
odb::nullable<unsigned> moved_index(unsigned index, std::uint64_t from, std::uint64_t to);

// Where the ends of the core go then; null: the end stays, which is not the same as being set to
// its own value. A layer from outside the core that comes to stand at one of its ends stays
// outside.
odb::nullable<unsigned> moved_first(const Core& core, std::uint64_t from, std::uint64_t to);
odb::nullable<unsigned> moved_last(const Core& core, std::uint64_t from, std::uint64_t to);

/// Throws `std::out_of_range` unless `valid`.
void check_index(bool valid);

}  // namespace veldra

#endif
