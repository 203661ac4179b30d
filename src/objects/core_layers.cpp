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
/// the structure; `otherwise` if there is none.
unsigned find_structure(const Composition::Layers& layers, unsigned begin, unsigned end,
                        unsigned step, unsigned otherwise) {
  for (unsigned index = begin; index != end; index += step) {
    check_index(index < layers.size());
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

}  // namespace

void check_index(bool valid) {
  if (!valid) throw std::out_of_range("invalid vector<T> subscript");
}

Core with_last(const Core& core, unsigned index, const Composition::Layers& layers) {
  const unsigned last = std::min(index, last_index(layers));
  return {std::min(core.first, last), last};
}

Core with_first(const Core& core, unsigned index, const Composition::Layers& layers) {
  const Core begun{index, core.last};
  return index > core.last ? with_last(begun, index, layers) : begun;
}

unsigned structure_within(const Core& core, unsigned index, const Composition::Layers& layers) {
  if (index < core.first) {
    index = find_structure(layers, core.first, core.last + 1, 1, core.first);
  }
  if (index > core.last) {
    index = find_structure(layers, core.last, core.first - 1, -1U, core.last);
  }
  return index;
}

odb::nullable<unsigned> moved_index(unsigned index, std::uint64_t from, std::uint64_t to) {
  if (from == index) return static_cast<unsigned>(to);
  if (from < index && to >= index) return index - 1;
  if (from > index && to <= index) return index + 1;
  return {};
}

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

}  // namespace veldra
