// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_PYTHON_CASTERS_HPP
#define VELDRA_PYTHON_CASTERS_HPP

#include <veldra/composition.hpp>

#include <pybind11/pybind11.h>

namespace veldra::python {

struct LibraryHandle;
struct PlanHandle;

/// Refuses objects whose `__init__` has not run, such as those of a class of the host before it
/// calls that of its base. Otherwise they would come as memory that nobody has filled.
template <class T>
struct InitialisedCaster : pybind11::detail::type_caster_base<T> {
  bool load(pybind11::handle source, bool convert) {
    const auto* const known = this->typeinfo;
    if (known != nullptr && PyObject_TypeCheck(source.ptr(), known->type)) {
      auto* const instance = reinterpret_cast<pybind11::detail::instance*>(source.ptr());
      if (!instance->get_value_and_holder(known).holder_constructed()) {
        throw pybind11::type_error("the object has no value: its __init__ has not been called");
      }
    }
    return pybind11::detail::type_caster_base<T>::load(source, convert);
  }
};

}  // namespace veldra::python

namespace pybind11::detail {

template <>
struct type_caster<veldra::Tag> : veldra::python::InitialisedCaster<veldra::Tag> {};
template <>
struct type_caster<veldra::Layer> : veldra::python::InitialisedCaster<veldra::Layer> {};
template <>
struct type_caster<veldra::MaterialType> : veldra::python::InitialisedCaster<veldra::MaterialType> {
};
template <>
struct type_caster<veldra::CustomProperty>
    : veldra::python::InitialisedCaster<veldra::CustomProperty> {};
template <>
struct type_caster<veldra::Material> : veldra::python::InitialisedCaster<veldra::Material> {};
template <>
struct type_caster<veldra::Composition> : veldra::python::InitialisedCaster<veldra::Composition> {};
template <>
struct type_caster<veldra::python::LibraryHandle>
    : veldra::python::InitialisedCaster<veldra::python::LibraryHandle> {};
template <>
struct type_caster<veldra::python::PlanHandle>
    : veldra::python::InitialisedCaster<veldra::python::PlanHandle> {};

}  // namespace pybind11::detail

#endif
