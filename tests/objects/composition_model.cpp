// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/composition_model.hpp"

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <tuple>

namespace veldra_tests {

namespace {

[[noreturn]] void refuse() { throw std::out_of_range("invalid vector<T> subscript"); }

std::vector<std::pair<double, int>> values_of(const std::vector<BuildUp::Layer>& layers) {
  std::vector<std::pair<double, int>> values;
  for (const BuildUp::Layer& layer : layers) values.emplace_back(layer.thickness, layer.function);
  return values;
}

}  // namespace

bool BuildUp::operator==(const BuildUp& other) const {
  return std::tie(layers, first, last, structural, has_variable, variable, dirty, thrown) ==
         std::tie(other.layers, other.first, other.last, other.structural, other.has_variable,
                  other.variable, other.dirty, other.thrown);
}

bool BuildUp::operator<(const BuildUp& other) const {
  const auto ours = values_of(layers);
  const auto theirs = values_of(other.layers);
  return std::tie(ours, first, last, structural, has_variable, variable, dirty, thrown) <
         std::tie(theirs, other.first, other.last, other.structural, other.has_variable,
                  other.variable, other.dirty, other.thrown);
}

std::ostream& operator<<(std::ostream& out, const BuildUp& build_up) {
  out << "core " << build_up.first << " to " << build_up.last << ", structural "
      << build_up.structural << ", variable ";
  if (build_up.has_variable) {
    out << build_up.variable;
  } else {
    out << "none (" << build_up.variable << ")";
  }
  out << (build_up.dirty ? ", dirty" : ", clean") << ", layers";
  for (const BuildUp::Layer& layer : build_up.layers) {
    out << " " << layer.thickness << (layer.function == 1 ? "S" : "");
  }
  if (!build_up.thrown.empty()) out << ", threw " << build_up.thrown;
  return out;
}

void CompositionModel::store(Index index, std::uint32_t value) {
  if (now_.*index != value) now_.dirty = true;
  now_.*index = value;
}

bool CompositionModel::is_structure(std::uint32_t index) const {
  if (index >= now_.layers.size()) refuse();
  return now_.layers[index].function == 1;
}

void CompositionModel::first_core_layer(std::uint32_t index) { store_first(index); }

void CompositionModel::store_first(std::uint32_t index) {
  store(&BuildUp::first, index);
  if (index > now_.last) last_core_layer(index);
  structural_layer(now_.structural);
}

void CompositionModel::last_core_layer(std::uint32_t index) {
  const std::uint32_t limited = std::min(index, end());
  store(&BuildUp::last, limited);
  if (limited < now_.first) first_core_layer(limited);
  structural_layer(now_.structural);
}

void CompositionModel::structural_layer(std::uint32_t index) {
  const std::uint64_t first = now_.first;
  const std::uint64_t last = now_.last;
  std::uint64_t candidate = index;
  if (candidate < first) {
    candidate = first;
    for (std::uint64_t layer = first; layer <= last; ++layer) {
      if (is_structure(static_cast<std::uint32_t>(layer))) {
        candidate = layer;
        break;
      }
    }
  }
  if (candidate > last) {
    candidate = last;
    for (std::uint64_t beyond = last + 1; beyond > first; --beyond) {
      if (is_structure(static_cast<std::uint32_t>(beyond - 1))) {
        candidate = beyond - 1;
        break;
      }
    }
  }
  store(&BuildUp::structural, static_cast<std::uint32_t>(candidate));
}

void CompositionModel::variable_layer(std::uint32_t index) {
  if (!now_.has_variable) now_.dirty = true;
  now_.has_variable = true;
  store(&BuildUp::variable, index);
}

void CompositionModel::clear_variable_layer() {
  now_.dirty = true;
  now_.has_variable = false;
  now_.variable = 0;
}

void CompositionModel::append_layer(const BuildUp::Layer& layer) {
  now_.dirty = true;
  now_.layers.push_back(layer);
}

void CompositionModel::insert_layer(std::uint64_t index, const BuildUp::Layer& layer) {
  if (index > now_.layers.size()) refuse();
  now_.dirty = true;
  now_.layers.insert(now_.layers.begin() + static_cast<std::ptrdiff_t>(index), layer);

  if (index <= now_.first) {
    store(&BuildUp::first, now_.first + 1);
    if (now_.first > now_.last) last_core_layer(now_.first);
    structural_layer(now_.structural);
  }
  if (index <= now_.last) last_core_layer(now_.last + 1);
  if (index <= now_.structural) structural_layer(now_.structural + 1);
  if (now_.has_variable && index <= now_.variable) ++now_.variable;
}

void CompositionModel::remove_layer(std::uint64_t index) {
  if (index >= now_.layers.size()) refuse();
  now_.dirty = true;
  now_.layers.erase(now_.layers.begin() + static_cast<std::ptrdiff_t>(index));

  if (index < now_.first) {
    store(&BuildUp::first, now_.first - 1);
    if (now_.first > now_.last) last_core_layer(now_.first);
    structural_layer(now_.structural);
  }
  if (index <= now_.last) last_core_layer(now_.last - 1);
  if (index <= now_.structural) structural_layer(now_.structural - 1);
  if (!now_.has_variable) return;
  if (index == now_.variable) {
    clear_variable_layer();
  } else if (index < now_.variable) {
    --now_.variable;
  }
}

void CompositionModel::store_last_at_the_end_of_a_move(std::uint32_t index) {
  store(&BuildUp::last, index);
  if (index < now_.first) store_first(index);
  structural_layer(now_.structural);
}

void CompositionModel::move_layer(std::uint64_t from, std::uint64_t to) {
  now_.dirty = true;
  const std::uint64_t count = now_.layers.size();
  if (from >= count) refuse();
  const BuildUp::Layer moved = now_.layers[from];
  now_.layers.erase(now_.layers.begin() + static_cast<std::ptrdiff_t>(from));
  now_.layers.insert(now_.layers.begin() + static_cast<std::ptrdiff_t>(std::min(to, count - 1)),
                     moved);

  const std::uint32_t first = now_.first;
  const std::uint32_t last = now_.last;
  const std::uint32_t structural = now_.structural;
  const auto target = static_cast<std::uint32_t>(to);
  const bool in_core = first <= from && from <= last;

  if (from == first && from == last) {
    first_core_layer(target);
    store_last_at_the_end_of_a_move(std::min(target, end()));
  } else {
    if (from < first && to >= first) {
      store_first(first - 1);
    } else if (from >= first && (to < first || (to == first && !in_core))) {
      store_first(first + 1);
    }
    if (from > last && to <= last) {
      store_last_at_the_end_of_a_move(std::min(last + 1, end()));
    } else if (from <= last && (to > last || (to == last && !in_core))) {
      store_last_at_the_end_of_a_move(std::min(last - 1, end()));
    }
  }

  if (from == structural) {
    structural_layer(target);
  } else if (from < structural && to >= structural) {
    structural_layer(structural - 1);
  } else if (from > structural && to <= structural) {
    structural_layer(structural + 1);
  }

  if (!now_.has_variable) return;
  if (from == now_.variable) {
    now_.variable = target;
  } else if (from < now_.variable && to >= now_.variable) {
    --now_.variable;
  } else if (from > now_.variable && to <= now_.variable) {
    ++now_.variable;
  }
}

void CompositionModel::set_function(std::uint64_t index, int function) {
  if (index >= now_.layers.size()) refuse();
  now_.dirty = true;
  now_.layers[index].function = function;
}

}  // namespace veldra_tests
