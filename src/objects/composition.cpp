#include "objects/composition_impl.hpp"
#include "objects/handle_members.hpp"

#include <algorithm>
#include <stdexcept>

namespace veldra {

VELDRA_HANDLE_MEMBERS(Composition);
template class Tagged<Composition>;
template class CustomValued<Composition>;

namespace {

void check_index(bool valid) {
  if (!valid) throw std::out_of_range("invalid vector<T> subscript");
}

Composition::Layers::difference_type offset(std::uint64_t index) {
  return static_cast<Composition::Layers::difference_type>(index);
}

/// The index of the last layer, in the arithmetic of the stored indices: 4294967295 without layers.
unsigned last_index(const Composition::Layers& layers) {
  return static_cast<unsigned>(layers.size()) - 1;
}

/// Where the index of a layer goes when the layer at `from` moves to `to`; null: it stays.
odb::nullable<unsigned> moved_index(unsigned index, std::uint64_t from, std::uint64_t to) {
  if (from == index) return static_cast<unsigned>(to);
  if (from < index && to >= index) return index - 1;
  if (from > index && to <= index) return index + 1;
  return {};
}

void move_core(Composition& composition, std::uint64_t from, std::uint64_t to) {
  const unsigned first = composition.first_core_layer();
  const unsigned last = composition.last_core_layer();
  if (from == first && from == last) {
    composition.first_core_layer(static_cast<unsigned>(to));
    composition.last_core_layer(static_cast<unsigned>(to));
    return;
  }

  // A layer from outside the core that comes to stand at one of its ends stays outside.
  const bool from_core = first <= from && from <= last;
  const bool before_first = to < first || (to == first && !from_core);
  const bool behind_last = to > last || (to == last && !from_core);

  if (from < first && to >= first) {
    composition.first_core_layer(first - 1);
  } else if (from >= first && before_first) {
    composition.first_core_layer(first + 1);
  }
  if (from > last && to <= last) {
    composition.last_core_layer(last + 1);
  } else if (from <= last && behind_last) {
    composition.last_core_layer(last - 1);
  }
}

/// The first of the indices from `begin` towards `end`, in steps of `step`, whose layer may carry
/// the structure; `otherwise` if there is none. The indices wrap around as they are stored.
unsigned find_structure(const Composition& composition, unsigned begin, unsigned end, unsigned step,
                        unsigned otherwise) {
  for (unsigned index = begin; index != end; index += step) {
    if (composition.layer(index).function() == Material::Function::Structure) return index;
  }
  return otherwise;
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

std::shared_ptr<Composition> Composition::clone() const {
  const auto copy = create();
  *copy = *this;
  return copy;
}

Composition& Composition::operator=(const Composition& other) {
  assign_values(impl(), other.impl());
  return *this;
}

bool Composition::operator==(const Composition& other) const {
  const Impl& a = impl();
  const Impl& b = other.impl();
  // Deliberate: of the variable layer and of the maximum thickness only the presence counts.
  return a.name == b.name && a.description == b.description && a.tags == b.tags &&
         a.type == b.type && same_or_equal_names(a.entity_layer, b.entity_layer) &&
         a.comments == b.comments && a.layers == b.layers &&
         a.first_core_layer == b.first_core_layer && a.last_core_layer == b.last_core_layer &&
         a.structural_layer == b.structural_layer &&
         a.variable_layer.null() == b.variable_layer.null() &&
         a.variable_layer_min_thickness == b.variable_layer_min_thickness &&
         a.variable_layer_max_thickness.null() == b.variable_layer_max_thickness.null() &&
         a.custom_values == b.custom_values;
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

  if (index <= record.first_core_layer) first_core_layer(record.first_core_layer + 1);
  // Deliberate: the step above may have raised the last core layer already.
  if (index <= record.last_core_layer) last_core_layer(record.last_core_layer + 1);
  if (index <= record.structural_layer) structural_layer(record.structural_layer + 1);
  if (has_variable_layer() && index <= variable_layer()) variable_layer(variable_layer() + 1);
}

void Composition::removeLayer(std::uint64_t index) {
  Impl& record = impl();
  check_index(index < record.layers.size());
  record.layers.erase(record.layers.begin() + offset(index));
  record.dirty = true;

  // Deliberate: only a layer before the core moves its first index, while the others follow a
  // layer at their place as well, down through 0 to the last layer.
  if (index < record.first_core_layer) first_core_layer(record.first_core_layer - 1);
  if (index <= record.last_core_layer) last_core_layer(record.last_core_layer - 1);
  if (index <= record.structural_layer) structural_layer(record.structural_layer - 1);
  if (!has_variable_layer()) return;
  if (index == variable_layer()) return clear_variable_layer();
  if (index < variable_layer()) variable_layer(variable_layer() - 1);
}

void Composition::moveLayer(std::uint64_t from, std::uint64_t to) {
  Impl& record = impl();
  record.dirty = true;
  const Layer moved = layer(from);
  record.layers.erase(record.layers.begin() + offset(from));
  const auto place = std::min<std::uint64_t>(to, record.layers.size());
  record.layers.insert(record.layers.begin() + offset(place), moved);

  const auto structural = moved_index(record.structural_layer, from, to);
  move_core(*this, from, to);
  if (structural) structural_layer(*structural);
  if (!has_variable_layer()) return;
  const auto variable = moved_index(variable_layer(), from, to);
  if (variable) variable_layer(*variable);
}

unsigned Composition::first_core_layer() const noexcept { return impl().first_core_layer; }

void Composition::first_core_layer(unsigned index) {
  change(impl(), impl().first_core_layer, index);
  if (index > last_core_layer()) last_core_layer(index);
  structural_layer(structural_layer());
}

unsigned Composition::last_core_layer() const noexcept { return impl().last_core_layer; }

void Composition::last_core_layer(unsigned index) {
  const unsigned limited = std::min(index, last_index(layers()));
  change(impl(), impl().last_core_layer, limited);
  if (limited < first_core_layer()) first_core_layer(limited);
  structural_layer(structural_layer());
}

unsigned Composition::structural_layer() const noexcept { return impl().structural_layer; }

void Composition::structural_layer(unsigned index) {
  const unsigned first = first_core_layer();
  const unsigned last = last_core_layer();
  if (index < first) index = find_structure(*this, first, last + 1, 1, first);
  if (index > last) index = find_structure(*this, last, first - 1, -1U, last);
  change(impl(), impl().structural_layer, index);
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
