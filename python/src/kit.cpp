// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit.hpp"
#include "objects.hpp"
#include "text.hpp"
#include "values.hpp"

#include <veldra/kit/physics.hpp>
#include <veldra/kit/plan.hpp>

#include <pybind11/stl.h>

#include <map>
#include <optional>
#include <utility>

namespace veldra::python {

/// A plan as Python has it. The libraries are kept, and asked whether they are open.
struct PlanHandle {
  kit::Plan plan;
  Handle source;
  Handle destination;
};

kit::OnClash on_clash_named(const std::string& name) {
  const std::map<std::string, kit::OnClash> all{{"fail", kit::OnClash::Fail},
                                                {"use", kit::OnClash::Use},
                                                {"overwrite", kit::OnClash::Overwrite},
                                                {"rename", kit::OnClash::Rename}};
  const auto found = all.find(name);
  if (found != all.end()) return found->second;
  throw py::value_error("'" + name + "' is none of 'fail', 'use', 'overwrite' and 'rename'");
}

Unit unit_of(const Composition& composition) {
  const auto library = composition.library();
  return library ? library->unit() : Unit::Millimetres;
}

namespace {

/// Of objects of the source, by their keys.
template <class T>
using ByKey = std::map<std::pair<int, unsigned>, T>;

ObjectKey key_of(const std::pair<int, unsigned>& key) {
  return {static_cast<ObjectType>(key.first), key.second};
}

kit::PlanRules rules_of(const std::string& on_clash, const ByKey<std::string>& for_object,
                        const ByKey<unsigned>& states) {
  kit::PlanRules rules;
  rules.on_clash = on_clash_named(on_clash);
  for (const auto& [key, decision] : for_object) {
    rules.for_object[key_of(key)] = on_clash_named(decision);
  }
  for (const auto& [key, stored] : states) rules.states_of[key_of(key)] = stored;
  rules.fingerprints = true;
  return rules;
}

std::shared_ptr<PlanHandle> plan(Handle destination, Handle source, const std::string& on_clash,
                                 const ByKey<std::string>& for_object,
                                 const ByKey<unsigned>& states, const py::object& progress) {
  const Use use({destination.get(), source.get()});
  auto rules = rules_of(on_clash, for_object, states);
  auto made = run(use, {destination->file, {}}, [&] {
    return kit::Plan(source->library, *destination->library, std::move(rules),
                     [&] { look_for_signals(progress); });
  });
  return std::make_shared<PlanHandle>(
      PlanHandle{std::move(made), std::move(source), std::move(destination)});
}

/// In a transaction of the host's, which it commits, or else in one of its own.
IdMapping applied(const PlanHandle& self, const kit::Progress& progress) {
  Library& destination = *self.destination->library;
  if (!self.destination->transaction) return self.plan.apply_later(destination, progress);
  const kit::Plan now(self.source->library, destination, self.plan.rules(), progress);
  kit::require_same_state(self.plan, now);
  return now.apply(destination, progress);
}

py::list apply(const PlanHandle& self, const py::object& progress) {
  const Use use({self.destination.get(), self.source.get()});
  std::optional<IdMapping> mapping;
  const auto restore = [&] { self.destination->library->setReactor(self.destination->hub.get()); };
  try {
    mapping = run(use, {self.destination->file, {}},
                  [&] { return applied(self, [&] { look_for_signals(progress); }); });
  } catch (...) {
    restore();
    throw;
  }
  restore();
  return entries_of(*mapping);
}

py::list entries(const PlanHandle& self) {
  py::list result;
  for (const auto& entry : self.plan.entries()) {
    py::list changes;
    for (const auto& change : entry.changes) {
      changes.append(py::make_tuple(as_python(change.field), as_python(change.before),
                                    as_python(change.after)));
    }
    py::list clashes;
    for (const auto& clash : entry.clashes) clashes.append(as_python(clash.name));
    result.append(py::make_tuple(key_object(entry.source), as_python(entry.name),
                                 kit::name_of(entry.decision), as_python(entry.result), changes,
                                 clashes));
  }
  return result;
}

py::object optional_number(const std::optional<double>& number) {
  return number ? py::object(py::float_(*number)) : py::none();
}

py::dict layer_heat(const kit::LayerHeat& layer) {
  py::dict result;
  result["resistance"] = optional_number(layer.resistance);
  result["conductivity"] = optional_number(layer.conductivity);
  result["fault"] = as_python(layer.fault);
  return result;
}

py::dict heat(const Composition& composition, const Text& boundary) {
  require_readable(composition);
  const Use nothing({});
  kit::Transmission found;
  try {
    const auto asked = kit::physics::boundary_statement(boundary.utf8);
    found = kit::transmission_of(composition, unit_of(composition), asked);
  } catch (...) {
    raise(std::current_exception(), {});
  }
  py::dict result;
  result["u_value"] = optional_number(found.transmittance());
  result["resistance"] = optional_number(found.total_resistance());
  result["outside"] = found.outside;
  result["inside"] = found.inside;
  py::list layers;
  for (const auto& layer : found.layers) layers.append(layer_heat(layer));
  result["layers"] = layers;
  result["notes"] = found.notes;
  result["faults"] = found.faults;
  return result;
}

}  // namespace

void bind_kit(py::module_& module) {
  py::class_<PlanHandle, std::shared_ptr<PlanHandle>> plan_class(module, "_Plan");
  refuse_pickling(plan_class, "a veldra.Plan cannot be pickled: it belongs to two libraries");
  plan_class
      .def_property_readonly("decided",
                             [](const PlanHandle& self) { return self.plan.is_decided(); })
      .def_property_readonly("changes_anything",
                             [](const PlanHandle& self) { return self.plan.changes_anything(); })
      .def("_entries", &entries)
      .def("_apply", &apply);
  module.def("_plan", &plan, py::arg("destination").none(false), py::arg("source").none(false),
             py::arg("on_clash"), py::arg("for_object"), py::arg("states"), py::arg("progress"));
  module.def("_heat", &heat, py::arg("composition"), py::arg("boundary"));
}

}  // namespace veldra::python
