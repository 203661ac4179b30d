// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects/composition_impl.hpp"
#include "objects/core_layers.hpp"
#include "objects/handle_members.hpp"

#include <algorithm>

namespace veldra {

VELDRA_HANDLE_MEMBERS(Composition)
template class Tagged<Composition>;
template class CustomValued<Composition>;

namespace {

Composition::Layers::difference_type offset(std::uint64_t index) {
  return static_cast<Composition::Layers::difference_type>(index);
}

template <class Record>
LayerIndices indices_of(const Record& record) {
  return {{record.first_core_layer, record.last_core_layer},
          record.structural_layer,
          record.variable_layer,
          false};
}

/// Throws `std::out_of_range`, having set them, if they were searched beyond the layers.
template <class Record>
void change_indices(Record& record, const LayerIndices& indices) {
  change(record, record.first_core_layer, indices.core.first);
  change(record, record.last_core_layer, indices.core.last);
  change(record, record.structural_layer, indices.structural);
  record.variable_layer = indices.variable;  // changes with the layers alone, which mark the record
  check_index(!indices.beyond);
}

}  // namespace

Composition::Layer::Layer() = default;
Composition::Layer::Layer(const std::shared_ptr<const Material>& material,
                          Material::Function function, double thickness)
    : material_(material), function_(function), thickness_(thickness) {}

bool Composition::Layer::operator==(const Layer& other) const {
  return same_or_equal(material_, other.material_) && function_ == other.function_ &&
         thickness_ == other.thickness_;
}

bool Composition::Layer::operator!=(const Layer& other) const { return !(*this == other); }

std::shared_ptr<Composition> Composition::create() { return ObjectAccess::make<Composition>(); }

std::shared_ptr<Composition> Composition::create(const String& name) {
  return ObjectAccess::make<Composition>(name);
}

std::shared_ptr<Composition> Composition::clone() const { return clone_of(*this); }

Composition& Composition::operator=(const Composition& other) {
  assign_values(impl(), other.impl());
  return *this;
}

bool Composition::operator==(const Composition& other) const {
  return name() == other.name() && equal_values<CompositionValues>(impl(), other.impl());
}

bool Composition::operator!=(const Composition& other) const { return !(*this == other); }

void Composition::name(const String& name) { change(impl(), impl().name, name); }

const String& Composition::description() const noexcept { return impl().description; }
void Composition::description(const String& description) {
  change(impl(), impl().description, description);
}

const String& Composition::comments() const noexcept { return impl().comments; }
void Composition::comments(const String& comments) { change(impl(), impl().comments, comments); }

Composition::Type Composition::type() const noexcept { return impl().type; }

void Composition::type(Type type) {
  const auto bits = static_cast<unsigned>(type);
  for (const Type known : {Type::Wall, Type::Roof, Type::Floor}) {
    if ((bits & static_cast<unsigned>(known)) != 0) return change(impl(), impl().type, known);
  }
  change(impl(), impl().type, Type::Other);
}

const std::shared_ptr<const veldra::Layer>& Composition::entity_layer() const noexcept {
  return impl().entity_layer;
}

void Composition::entity_layer(const std::shared_ptr<const veldra::Layer>& layer) {
  change(impl(), impl().entity_layer, layer);
}

const Composition::Layers& Composition::layers() const noexcept { return impl().layers; }

const Composition::Layer& Composition::layer(std::uint64_t index) const {
  check_index(index < layers().size());
  return layers()[index];
}

Composition::Layer& Composition::layer(std::uint64_t index, const ToModify&) {
  check_index(index < layers().size());
  impl().dirty = true;
  return impl().layers[index];
}

Composition::Layers::iterator Composition::layers_begin(const ToModify&) {
  impl().dirty = true;
  return impl().layers.begin();
}

Composition::Layers::iterator Composition::layers_end(const ToModify&) {
  impl().dirty = true;
  return impl().layers.end();
}

void Composition::appendLayer(const Layer& layer) {
  impl().layers.push_back(layer);
  impl().dirty = true;
}

void Composition::insertLayer(std::uint64_t index, const Layer& layer) {
  Impl& record = impl();
  check_index(index <= record.layers.size());
  record.layers.insert(record.layers.begin() + offset(index), layer);
  record.dirty = true;
  change_indices(record, after_insertion(indices_of(record), index, record.layers));
}

void Composition::removeLayer(std::uint64_t index) {
  Impl& record = impl();
  check_index(index < record.layers.size());
  record.layers.erase(record.layers.begin() + offset(index));
  record.dirty = true;
  change_indices(record, after_removal(indices_of(record), index, record.layers));
}

void Composition::moveLayer(std::uint64_t from, std::uint64_t to) {
  Impl& record = impl();
  record.dirty = true;
  const Layer moved = layer(from);
  record.layers.erase(record.layers.begin() + offset(from));
  const auto place = std::min<std::uint64_t>(to, record.layers.size());
  record.layers.insert(record.layers.begin() + offset(place), moved);
  change_indices(record, after_move(indices_of(record), from, to, record.layers));
}

unsigned Composition::first_core_layer() const noexcept { return impl().first_core_layer; }

void Composition::first_core_layer(unsigned index) {
  Impl& record = impl();
  // Also where the layers end before the index, and the core stays where it is.
  if (index != record.first_core_layer) record.dirty = true;
  change_indices(record, with_first_core_layer(indices_of(record), index, record.layers));
}

unsigned Composition::last_core_layer() const noexcept { return impl().last_core_layer; }

void Composition::last_core_layer(unsigned index) {
  Impl& record = impl();
  change_indices(record, with_last_core_layer(indices_of(record), index, record.layers));
}

unsigned Composition::structural_layer() const noexcept { return impl().structural_layer; }

void Composition::structural_layer(unsigned index) {
  Impl& record = impl();
  change_indices(record, with_structural_layer(indices_of(record), index, record.layers));
}

bool Composition::has_variable_layer() const noexcept { return !impl().variable_layer.null(); }

unsigned Composition::variable_layer() const noexcept {
  return has_variable_layer() ? *impl().variable_layer : 0;
}

void Composition::variable_layer(unsigned index) {
  change_nullable(impl(), impl().variable_layer, index);
}

void Composition::clear_variable_layer() { clear(impl(), impl().variable_layer); }

double Composition::variable_layer_min_thickness() const noexcept {
  return impl().variable_layer_min_thickness;
}

void Composition::variable_layer_min_thickness(double thickness) {
  change(impl(), impl().variable_layer_min_thickness, thickness);
}

bool Composition::has_variable_layer_max_thickness() const noexcept {
  return !impl().variable_layer_max_thickness.null();
}

double Composition::variable_layer_max_thickness() const noexcept {
  return has_variable_layer_max_thickness() ? *impl().variable_layer_max_thickness : 0.0;
}

void Composition::variable_layer_max_thickness(double thickness) {
  change_nullable(impl(), impl().variable_layer_max_thickness, thickness);
}

void Composition::clear_variable_layer_max_thickness() {
  clear(impl(), impl().variable_layer_max_thickness);
}

}  // namespace veldra
