// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects.hpp"

#include "text.hpp"
#include "values.hpp"

#include <pybind11/stl.h>

#include <map>
#include <utility>

namespace veldra::python {

namespace {

/// Goes through an object and all to which it refers.
class Reaching {
 public:
  template <class T>
  void reach(const T& object) {
    if (!result_.objects.insert(&object).second) return;
    note_library(object);
    reach_further(object);
  }

  Reached result() && { return std::move(result_); }

 private:
  template <class T>
  void note_library(const T& object) {
    const auto library = object.library();
    if (!library && object.id() != 0 && result_.orphan.empty()) {
      result_.orphan = kit::singular_of(ObjectTraits<T>::type) + " '" + object.name().utf8() + "'";
    }
    LibraryHandle* const handle = library ? handle_of(library.get()) : nullptr;
    if (handle != nullptr) result_.libraries.push_back(handle);
  }

  template <class T>
  void reach_if(const std::shared_ptr<T>& object) {
    if (object) reach(*object);
  }

  template <class T>
  void reach_lists(const T& object) {
    for (const auto& tag : object.tags()) reach_if(tag);
    for (const auto& entry : object.custom_values()) reach(*entry.first);
  }

  template <class T>
  void reach_further(const T&) {}

  void reach_further(const Material& material) {
    reach_lists(material);
    reach_if(material.type());
    reach_if(material.cut_layer());
  }

  void reach_further(const Composition& composition) {
    reach_lists(composition);
    reach_if(composition.entity_layer());
    for (const auto& layer : composition.layers()) reach_if(layer.material());
  }

  Reached result_;
};

/// Clones of objects and of all to which they refer, each once. They belong to no library.
class DeepCopy {
 public:
  std::shared_ptr<Material> of(const Material& material) {
    auto& copy = materials_[key_of(material)];
    if (copy) return copy;
    copy = material.clone();
    copy->type(of_simple(material.type()));
    copy->cut_layer(of_simple(material.cut_layer()));
    copy->structuralAsset(nullptr);
    copy->thermalAsset(nullptr);
    copy_lists(material, *copy);
    return copy;
  }

  std::shared_ptr<Composition> of(const Composition& composition) {
    const auto copy = composition.clone();
    copy->entity_layer(of_simple(composition.entity_layer()));
    for (std::size_t i = 0; i < composition.layers().size(); ++i) {
      const auto& material = composition.layer(i).material();
      if (material) copy->layer(i, toModify).material(of(*material));
    }
    copy_lists(composition, *copy);
    return copy;
  }

  template <class T>
  std::shared_ptr<T> of(const T& object) {
    return object.clone();
  }

 private:
  template <class T>
  static std::shared_ptr<const T> of_simple(const std::shared_ptr<const T>& object) {
    return object ? object->clone() : nullptr;
  }

  template <class T>
  static void copy_lists(const T& from, T& to) {
    for (auto& tag : to.tags(toModify)) tag = tag->clone();
    to.clear_custom_values();
    for (const auto& [key, value] : from.custom_values()) {
      to.custom_value(std::shared_ptr<const CustomProperty>((*key).clone()), value);
    }
  }

  /// Layers that were read have handles of their own on one material of the library.
  static std::pair<unsigned, const void*> key_of(const Material& material) {
    if (material.id() == 0) return {0, &material};
    return {material.id(), material.library().get()};
  }

  std::map<std::pair<unsigned, const void*>, std::shared_ptr<Material>> materials_;
};

template <class T>
using ClassOfObject = py::class_<T, std::shared_ptr<T>>;

template <class T>
std::string text_about(const T& object) {
  return kit::singular_of(ObjectTraits<T>::type) + " '" + object.name().utf8() + "'";
}

template <class T>
std::string shown(const T& object, const char* name) {
  require_readable(object);
  const std::string id = object.id() == 0 ? "new" : std::to_string(object.id());
  return std::string("<veldra.") + name + " " + id + " " +
         std::string(py::repr(py::cast(object.name().utf8()))) + ">";
}

template <class T>
py::object library_of(const T& object) {
  require_readable(object);
  const auto library = object.library();
  LibraryHandle* const handle = library ? handle_of(library.get()) : nullptr;
  if (handle == nullptr) return py::none();
  return py::cast(handle, py::return_value_policy::reference);
}

template <class T>
ClassOfObject<T> bind_object(py::module_& module, const char* name) {
  ClassOfObject<T> object(module, name);
  object.def_property_readonly(
      "library", &library_of<T>,
      "The library of the object; None for one that was not saved, and after "
      "closing the library.");
  object.def_property_readonly(
      "dirty",
      [](const T& self) {
        require_readable(self);
        return self.isDirty();
      },
      "Whether something has changed since the object was read or saved.");
  object.def("__repr__", [name](const T& self) { return shown(self, name); });
  object.def("__str__", [](const T& self) {
    require_readable(self);
    return text_about(self);
  });
  const auto equal = [](const T& self, const py::object& other) -> py::object {
    if (!py::isinstance<T>(other)) return py::reinterpret_borrow<py::object>(Py_NotImplemented);
    const auto& right = other.cast<const T&>();
    require_readable(self);
    require_readable(right);
    return py::bool_(self == right);
  };
  object.def("__eq__", equal);
  object.attr("__hash__") = py::none();
  object.def("__copy__", [](const T& self) {
    require_readable(self);
    return self.clone();
  });
  object.def("__deepcopy__", [](const T& self, const py::dict&) {
    require_readable(self);
    return DeepCopy().of(self);
  });
  refuse_pickling(object, std::string("a veldra.") + name +
                              " cannot be pickled: it belongs to a library; pickle its name or its "
                              "id and the name of the file, and read it again");
  return object;
}

template <class T>
void bind_named(py::module_& module, const char* name) {
  bind_object<T>(module, name)
      .def(py::init([](const Text& text) { return T::create(text.string()); }), py::arg("name"));
}

template <class T>
void bind_custom_values(ClassOfObject<T>& object) {
  object.def("_custom_values", [](const T& self) {
    require_readable(self);
    py::dict result;
    for (const auto& [key, value] : self.custom_values()) {
      result[as_python((*key).name().utf8())] = as_python(value.utf8());
    }
    return result;
  });
  object.def("_set_custom_value", [](T& self, const Text& name, const Text& value) {
    require_writable(self);
    self.custom_value(name.string(), value.string());
  });
  object.def("_clear_custom_value", [](T& self, const Text& name) {
    require_writable(self);
    self.clear_custom_value(name.string());
  });
}

using PlainLayer = std::tuple<std::shared_ptr<Material>, double, int>;

Composition::Layer layer_from(const PlainLayer& layer) {
  const auto& [material, thickness, function] = layer;
  if (!material) throw py::type_error("a layer needs a veldra.Material");
  return {material, static_cast<Material::Function>(function), thickness};
}

void bind_layers(ClassOfObject<Composition>& composition) {
  composition.def("_layer_count", [](const Composition& self) {
    require_readable(self);
    return self.layers().size();
  });
  composition.def("_layer", [](const Composition& self, std::size_t index) {
    require_readable(self);
    const auto& layer = self.layer(index);
    return PlainLayer(lent(layer.material()), layer.thickness(),
                      static_cast<int>(layer.function()));
  });
  composition.def("_set_layer", [](Composition& self, std::size_t index, const PlainLayer& layer) {
    require_writable(self);
    const auto value = layer_from(layer);
    self.layer(index, toModify) = value;
  });
  composition.def("_insert_layer",
                  [](Composition& self, std::size_t index, const PlainLayer& layer) {
                    require_writable(self);
                    const auto value = layer_from(layer);
                    if (index >= self.layers().size()) return self.appendLayer(value);
                    self.insertLayer(index, value);
                  });
  composition.def("_remove_layer", [](Composition& self, std::size_t index) {
    require_writable(self);
    self.removeLayer(index);
    if (!self.layers().empty()) return;
    // The library would have gone on below 0; now it is as a new one.
    self.structural_layer(0);
    self.last_core_layer(0);
  });
  composition.def("_move_layer", [](Composition& self, std::size_t from, std::size_t to) {
    require_writable(self);
    self.moveLayer(from, to);
  });
}

}  // namespace

template <class T>
Reached reached_from(const T& object) {
  Reaching reaching;
  reaching.reach(object);
  return std::move(reaching).result();
}

template Reached reached_from(const Material&);
template Reached reached_from(const Composition&);
template Reached reached_from(const MaterialType&);
template Reached reached_from(const Layer&);
template Reached reached_from(const CustomProperty&);
template Reached reached_from(const Tag&);

void bind_objects(py::module_& module) {
  bind_named<Tag>(module, "Tag");
  bind_named<Layer>(module, "Layer");
  bind_named<MaterialType>(module, "MaterialType");
  bind_object<CustomProperty>(module, "CustomProperty")
      .def(py::init([](const Text& name, int type) {
             return CustomProperty::create(name.string(), static_cast<ObjectType>(type));
           }),
           py::arg("name"), py::arg("object_type"));

  auto material = bind_object<Material>(module, "Material");
  material.def(py::init([](const Text& name) { return Material::create(name.string()); }),
               py::arg("name"));
  bind_custom_values<Material>(material);

  auto composition = bind_object<Composition>(module, "Composition");
  composition.def(py::init([](const Text& name) { return Composition::create(name.string()); }),
                  py::arg("name"));
  bind_custom_values<Composition>(composition);
  bind_layers(composition);
}

}  // namespace veldra::python
