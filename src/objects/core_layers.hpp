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

/// What a composition notes of its layers.
struct LayerIndices {
  Core core;
  unsigned structural;
  odb::nullable<unsigned> variable;
  bool beyond = false;  ///< the search for a structural layer left the layers; nothing moves then
};

// Pure functions: the indices as they are after a change, from those before it and the layers as
// they are then. The structural layer is kept within the core. A core may be noted that goes beyond
// the layers: where it is searched, what was found until then stays, and the rest is left alone.

/// When the core is to begin at `first`; it ends there too where it would end before.
LayerIndices with_first_core_layer(LayerIndices indices, unsigned first,
                                   const Composition::Layers& layers);

/// When the core is to end at `last`, or at the last layer; it begins there too where it would
/// begin behind it.
LayerIndices with_last_core_layer(LayerIndices indices, unsigned last,
                                  const Composition::Layers& layers);

/// When `structural` is asked for: this one, or for one outside of the core the nearest in it that
/// may carry the structure, or else the end of the core.
LayerIndices with_structural_layer(LayerIndices indices, unsigned structural,
                                   const Composition::Layers& layers);

/// When a layer was put in at `place`.
LayerIndices after_insertion(LayerIndices indices, std::uint64_t place,
                             const Composition::Layers& layers);

/// When the layer at `place` was taken out.
LayerIndices after_removal(LayerIndices indices, std::uint64_t place,
                           const Composition::Layers& layers);

/// When the layer at `from` was put to `to`. A layer from outside the core that comes to stand at
/// one of its ends stays outside.
LayerIndices after_move(LayerIndices indices, std::uint64_t from, std::uint64_t to,
                        const Composition::Layers& layers);

/// Throws `std::out_of_range` unless `valid`.
void check_index(bool valid);

}  // namespace veldra

#endif
