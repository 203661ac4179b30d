// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/fields/tables.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/physics.hpp>
#include <veldra/kit/physics_moisture.hpp>
#include <veldra/kit/physics_storage.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace veldra::kit {

namespace {

void add_type(Table<Composition>& table) {
  auto description = described("type", Value::Kind::Text);
  description.required = true;
  for (const auto type : all_composition_types()) description.choices.push_back(name_of(type));
  table.add(
      description,
      [](const Composition& composition) { return Value(name_of(composition.type())); },
      [](Composition& composition, const Value& value) {
        for (const auto type : all_composition_types()) {
          if (name_of(type) == value.as<std::string>()) composition.type(type);
        }
      });
}

Value layers_of(const Composition& composition) {
  Value::Layers layers;
  for (const auto& layer : composition.layers()) {
    layers.push_back({layer.material() ? layer.material()->name().utf8() : std::string(),
                      layer.thickness(), static_cast<int>(layer.function())});
  }
  return layers;
}

/// The materials of layers, each found once.
class MaterialsByName {
 public:
  MaterialsByName(const FieldDescription& field, const Value& value, const Library* library)
      : field_(field), value_(value), library_(library) {}

  std::shared_ptr<const Material> find(const std::string& name) {
    auto& material = found_[name];
    if (!material) material = read(name);
    return material;
  }

 private:
  std::shared_ptr<const Material> read(const std::string& text) const {
    const auto name = library_text(text);
    if (library_ == nullptr) return Material::create(name);
    auto material = library_->get<Material>(name);
    if (material) return material;
    throw FieldError(field_.name(), value_text(value_),
                     absence_of("material", text, {}) + suggestion(nearest(text, field_.names())));
  }

  const FieldDescription& field_;
  const Value& value_;
  const Library* library_;
  std::map<std::string, std::shared_ptr<const Material>> found_;
};

/// Puts other layers in the place of those that are there. The indices stay where they can.
void replace_layers(Composition& composition, const Composition::Layers& layers) {
  const unsigned last = layers.empty() ? 0 : static_cast<unsigned>(layers.size() - 1);
  const auto fresh = Composition::create();
  for (const auto& layer : layers) fresh->appendLayer(layer);
  fresh->last_core_layer(std::min(composition.last_core_layer(), last));
  fresh->first_core_layer(std::min(composition.first_core_layer(), last));
  fresh->structural_layer(std::min(composition.structural_layer(), last));
  const unsigned indices[] = {fresh->last_core_layer(), fresh->first_core_layer(),
                              fresh->structural_layer()};
  // What is removed then lies behind the core, and moves nothing.
  composition.first_core_layer(0);
  composition.last_core_layer(0);
  while (composition.layers().size() > layers.size()) {
    composition.removeLayer(composition.layers().size() - 1);
  }
  for (std::size_t i = 0; i < layers.size(); ++i) {
    if (i == composition.layers().size()) composition.appendLayer(layers[i]);
    composition.layer(i, toModify) = layers[i];
  }
  // Without layers the indices are beyond 0, and the core must not shrink before what lies in it.
  if (layers.empty()) composition.structural_layer(0);
  composition.last_core_layer(indices[0]);
  composition.first_core_layer(indices[1]);
  composition.structural_layer(indices[2]);
}

void set_layers(Composition& composition, const Value& value, const FieldDescription& field,
                const Library* library) {
  MaterialsByName materials(field, value, library);
  Composition::Layers layers;
  for (const LayerValue& layer : value.as<Value::Layers>()) {
    layers.emplace_back(materials.find(layer.material),
                        static_cast<Material::Function>(layer.function), layer.thickness);
  }
  const auto before = composition.clone();
  try {
    replace_layers(composition, layers);
  } catch (...) {
    composition = *before;
    throw;
  }
}

void add_layers(Table<Composition>& table, const Context& context) {
  auto description =
      referring<Material>(described("layers", Value::Kind::Layers), "material", context);
  description.aliases = {"layer"};
  description.words = function_words();
  description.measure = Measure::Length;
  description.required = true;
  table.add(description, layers_of,
            [description, library = context.library](Composition& composition, const Value& value) {
              set_layers(composition, value, description, library);
            });
}

using GetIndex = unsigned (Composition::*)() const noexcept;
using SetIndex = void (Composition::*)(unsigned);

/// The library moves an index that cannot stay; here that is an error.
void set_index(Composition& composition, const Value& value, const FieldDescription& field,
               GetIndex get, SetIndex set) {
  const unsigned index = index_of(field, value);
  const auto before = composition.clone();
  try {
    (composition.*set)(index);
    if ((composition.*get)() == index) return;
  } catch (const std::out_of_range&) {
  }
  const auto layers = composition.layers().size();
  const std::string core =
      fmt::format("it must be a layer of the core, {} to {}, counted from 1",
                  before->first_core_layer() + 1ULL, before->last_core_layer() + 1ULL);
  composition = *before;
  throw FieldError(field.name(), counted_text(field, value),
                   field.key == "structural_layer"
                       ? core
                       : fmt::format("it must be one of the {} layers, counted from 1", layers));
}

void add_index(Table<Composition>& table, const char* key, GetIndex get, SetIndex set) {
  auto description = described(key, Value::Kind::WholeNumber);
  description.required = true;
  description.is_position = true;
  table.add(
      description, [get](const Composition& composition) { return Value((composition.*get)()); },
      [description, get, set](Composition& composition, const Value& value) {
        set_index(composition, value, description, get, set);
      });
}

void add_variable_layer(Table<Composition>& table) {
  auto description = described("variable_layer", Value::Kind::WholeNumber);
  description.is_position = true;
  table.add(
      description,
      [](const Composition& composition) {
        return composition.has_variable_layer() ? Value(composition.variable_layer()) : Value();
      },
      [description](Composition& composition, const Value& value) {
        if (value.is_nothing()) return composition.clear_variable_layer();
        composition.variable_layer(index_of(description, value));
      });
}

void add_limits(Table<Composition>& table) {
  auto least = described("variable_layer_min_thickness", Value::Kind::Number, 0.0);
  least.measure = Measure::Length;
  table.add(
      least,
      [](const Composition& composition) {
        return Value(composition.variable_layer_min_thickness());
      },
      [](Composition& composition, const Value& value) {
        composition.variable_layer_min_thickness(value.as<double>());
      });
  auto greatest = described("variable_layer_max_thickness", Value::Kind::Number);
  greatest.measure = Measure::Length;
  table.add(
      greatest,
      [](const Composition& composition) {
        return composition.has_variable_layer_max_thickness()
                   ? Value(composition.variable_layer_max_thickness())
                   : Value();
      },
      [](Composition& composition, const Value& value) {
        if (value.is_nothing()) return composition.clear_variable_layer_max_thickness();
        composition.variable_layer_max_thickness(value.as<double>());
      });
}

FieldDescription figure(const char* key, const char* label, Measure measure, const char* alias,
                        int decimals) {
  auto description = derived(key, label, Value::Kind::Number);
  description.measure = measure;
  description.aliases = {alias};
  description.decimals = decimals;
  return description;
}

Value optional_value(const std::optional<double>& number) {
  return number ? Value(*number) : Value();
}

void add_capacity(Table<Composition>& table, const char* key, const char* label,
                  double physics::Storage::*side, Unit unit) {
  table.add(figure(key, label, Measure::AreaCapacity, key, 1),
            [unit, side](const Composition& composition) {
              const auto storage = storage_of(composition, unit).storage;
              return storage ? Value((*storage).*side / 1000) : Value();
            });
}

void add_figures(Table<Composition>& table, Unit unit) {
  table.add(derived("layer_count", "layers", Value::Kind::WholeNumber),
            [](const Composition& composition) {
              return Value(static_cast<long long>(composition.layers().size()));
            });
  table.add(figure("total_thickness", "total", Measure::Length, "thickness", -1),
            [](const Composition& composition) { return Value(total_thickness(composition)); });
  table.add(figure("total_resistance", "R", Measure::Resistance, "R", 3),
            [unit](const Composition& composition) {
              return optional_value(transmission_of(composition, unit).total_resistance());
            });
  table.add(figure("transmittance", "U", Measure::Transmittance, "U", 2),
            [unit](const Composition& composition) {
              return optional_value(transmission_of(composition, unit).transmittance());
            });
  table.add(figure("sd", "s_d", Measure::VapourThickness, "vapour_thickness", 2),
            [unit](const Composition& composition) {
              return optional_value(diffusion_of(composition, unit).total);
            });
  table.add(figure("mass", "mass", Measure::AreaMass, "areal_mass", 1),
            [unit](const Composition& composition) {
              return optional_value(mass_of(composition, unit));
            });
  add_capacity(table, "kappa_inside", "κ inside", &physics::Storage::inside, unit);
  add_capacity(table, "kappa_outside", "κ outside", &physics::Storage::outside, unit);
}

}  // namespace

template <>
Table<Composition> table_of<Composition>(const Context& context) {
  using C = Composition;
  Table<C> table;
  add_id(table);
  add_name(table);
  add_type(table);
  add_text<C>(table, described("description", Value::Kind::Text, ""), &C::description,
              &C::description);
  add_text<C>(table, described("comments", Value::Kind::Text, ""), &C::comments, &C::comments);
  add_tags(table, context);
  add_layer<C>(table, "entity_layer", &C::entity_layer, &C::entity_layer, context);
  add_custom_values(table, context);
  add_layers(table, context);
  add_index(table, "first_core_layer", &C::first_core_layer, &C::first_core_layer);
  add_index(table, "last_core_layer", &C::last_core_layer, &C::last_core_layer);
  add_index(table, "structural_layer", &C::structural_layer, &C::structural_layer);
  add_variable_layer(table);
  add_limits(table);
  add_figures(table, context.unit);
  return table;
}

}  // namespace veldra::kit
