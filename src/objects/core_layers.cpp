// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/core_layers.hpp"

#include <algorithm>
#include <stdexcept>

namespace veldra {

namespace {

/// The last layer, in the arithmetic of the indices: 4294967295 without layers.
unsigned last_index(const Composition::Layers& layers) {
  return static_cast<unsigned>(layers.size()) - 1;
}

/// The first of the indices from `begin` towards `end`, in steps of `step`, whose layer may carry
/// the structure; `otherwise` if there is none; null if the layers end before.
odb::nullable<unsigned> find_structure(const Composition::Layers& layers, unsigned begin,
                                       unsigned end, unsigned step, unsigned otherwise) {
  for (unsigned index = begin; index != end; index += step) {
    if (index >= layers.size()) return {};
    if (layers[index].function() == Material::Function::Structure) return index;
  }
  return otherwise;
}

bool is_in(const Core& core, std::uint64_t index) {
  return core.first <= index && index <= core.last;
}

/// Whether the core is that layer alone.
bool is_all(const Core& core, std::uint64_t index) {
  return index == core.first && index == core.last;
}

/// The core that ends at `index`, or at the last layer.
Core ending_at(const Core& core, unsigned index, const Composition::Layers& layers) {
  const unsigned last = std::min(index, last_index(layers));
  return {std::min(core.first, last), last};
}

Core beginning_at(const Core& core, unsigned index, const Composition::Layers& layers) {
  const Core begun{index, core.last};
  return index > core.last ? ending_at(begun, index, layers) : begun;
}

/// Null if the search for it leaves the layers.
odb::nullable<unsigned> structure_within(const Core& core, unsigned index,
                                         const Composition::Layers& layers) {
  odb::nullable<unsigned> found = index;
  if (index < core.first) {
    found = find_structure(layers, core.first, core.last + 1, 1, core.first);
  }
  if (found && *found > core.last) {
    found = find_structure(layers, core.last, core.first - 1, -1U, core.last);
  }
  return found;
}

LayerIndices with_structure(LayerIndices indices, unsigned structural,
                            const Composition::Layers& layers) {
  const auto found = structure_within(indices.core, structural, layers);
  if (found) indices.structural = *found;
  indices.beyond = found.null();
  return indices;
}

LayerIndices with_core(LayerIndices indices, const Core& core, const Composition::Layers& layers) {
  indices.core = core;
  return with_structure(indices, indices.structural, layers);
}

/// Where the index of a layer goes when the layer at `from` moves to `to`; null: it stays.
odb::nullable<unsigned> moved_index(unsigned index, std::uint64_t from, std::uint64_t to) {
  if (from == index) return static_cast<unsigned>(to);
  if (from < index && to >= index) return index - 1;
  if (from > index && to <= index) return index + 1;
  return {};
}

// Where the ends of the core go then; null: the end stays, which is not the same as being set to
// its own value.
odb::nullable<unsigned> moved_first(const Core& core, std::uint64_t from, std::uint64_t to) {
  if (is_all(core, from)) return static_cast<unsigned>(to);
  if (from < core.first && to >= core.first) return core.first - 1;
  const bool before = to < core.first || (to == core.first && !is_in(core, from));
  if (from >= core.first && before) return core.first + 1;
  return {};
}

odb::nullable<unsigned> moved_last(const Core& core, std::uint64_t from, std::uint64_t to) {
  if (is_all(core, from)) return static_cast<unsigned>(to);
  if (from > core.last && to <= core.last) return core.last + 1;
  const bool behind = to > core.last || (to == core.last && !is_in(core, from));
  if (from <= core.last && behind) return core.last - 1;
  return {};
}

}  // namespace

void check_index(bool valid) {
  if (!valid) throw std::out_of_range("invalid vector<T> subscript");
}

LayerIndices with_first_core_layer(LayerIndices indices, unsigned first,
                                   const Composition::Layers& layers) {
  if (indices.beyond) return indices;
  return with_core(indices, beginning_at(indices.core, first, layers), layers);
}

LayerIndices with_last_core_layer(LayerIndices indices, unsigned last,
                                  const Composition::Layers& layers) {
  if (indices.beyond) return indices;
  return with_core(indices, ending_at(indices.core, last, layers), layers);
}

LayerIndices with_structural_layer(LayerIndices indices, unsigned structural,
                                   const Composition::Layers& layers) {
  if (indices.beyond) return indices;
  return with_structure(indices, structural, layers);
}

LayerIndices after_insertion(LayerIndices indices, std::uint64_t place,
                             const Composition::Layers& layers) {
  if (place <= indices.core.first) {
    indices = with_first_core_layer(indices, indices.core.first + 1, layers);
  }
  // Deliberate: the step above may have raised the last core layer already.
  if (place <= indices.core.last) {
    indices = with_last_core_layer(indices, indices.core.last + 1, layers);
  }
  if (place <= indices.structural) {
    indices = with_structural_layer(indices, indices.structural + 1, layers);
  }
  if (indices.beyond || !indices.variable) return indices;
  if (place <= *indices.variable) indices.variable = *indices.variable + 1;
  return indices;
}

LayerIndices after_removal(LayerIndices indices, std::uint64_t place,
                           const Composition::Layers& layers) {
  // Deliberate: only a layer before the core moves its first index, while the others follow a
  // layer at their place as well, down through 0 to the last layer.
  if (place < indices.core.first) {
    indices = with_first_core_layer(indices, indices.core.first - 1, layers);
  }
  if (place <= indices.core.last) {
    indices = with_last_core_layer(indices, indices.core.last - 1, layers);
  }
  if (place <= indices.structural) {
    indices = with_structural_layer(indices, indices.structural - 1, layers);
  }
  if (indices.beyond || !indices.variable) return indices;
  if (place == *indices.variable) {
    indices.variable.reset();
  } else if (place < *indices.variable) {
    indices.variable = *indices.variable - 1;
  }
  return indices;
}

LayerIndices after_move(LayerIndices indices, std::uint64_t from, std::uint64_t to,
                        const Composition::Layers& layers) {
  const auto structural = moved_index(indices.structural, from, to);
  const auto first = moved_first(indices.core, from, to);
  const auto last = moved_last(indices.core, from, to);
  if (first) indices = with_first_core_layer(indices, *first, layers);
  if (last) indices = with_last_core_layer(indices, *last, layers);
  if (structural) indices = with_structural_layer(indices, *structural, layers);
  if (indices.beyond || !indices.variable) return indices;
  const auto variable = moved_index(*indices.variable, from, to);
  if (variable) indices.variable = *variable;
  return indices;
}

}  // namespace veldra
