// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_PYTHON_VALUES_HPP
#define VELDRA_PYTHON_VALUES_HPP

#include <veldra/kit/fields.hpp>

#include <pybind11/pybind11.h>

#include <string>

namespace veldra::python {

namespace py = pybind11;

/// A value as Python has it: None, a number, a text, a list, a colour, a hatch or a point.
py::object as_python(const kit::Value& value);

/// What Python gives for a field, as a value of its kind.
///
/// Throws, as exceptions of Python: `TypeError` for another kind, and `FieldError` for a number
/// that the field cannot have.
kit::Value value_for(const kit::FieldDescription& field, const py::handle& given);

/// Text of the library as one of Python.
py::str as_python(const std::string& text);

}  // namespace veldra::python

#endif
