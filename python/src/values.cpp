// SPDX-License-Identifier: GPL-2.0-or-later
#include "values.hpp"

#include "errors.hpp"
#include "text.hpp"

#include <cmath>
#include <utility>

namespace veldra::python {

namespace {

using kit::FieldDescription;
using kit::Value;

py::object made(const char* name, const py::tuple& parts) {
  return py::module_::import("veldra._values").attr(name)(*parts);
}

/// Colours and points cannot change, and most objects of a list have the same: the object of the
/// last one is given again. Kept to the end of the process, with the lock of the interpreter held.
template <class T, class Make>
py::object same_or_made(const T& value, Make make) {
  static T last;
  static PyObject* object = nullptr;
  if (object == nullptr || !(last == value)) {
    PyObject* const before = std::exchange(object, make().release().ptr());
    last = value;
    Py_XDECREF(before);
  }
  return py::reinterpret_borrow<py::object>(object);
}

py::object color(const Color& color) {
  return same_or_made(color, [&] {
    return made("Color", py::make_tuple(color.red, color.green, color.blue, color.alpha));
  });
}

py::object point(const Point2d& point) {
  return same_or_made(point, [&] { return made("Point", py::make_tuple(point.x, point.y)); });
}

py::object pattern(const Pattern& pattern) {
  if (pattern.type == Pattern::Type::None) return py::none();
  return made("Pattern", py::make_tuple(as_python(pattern.name.utf8()), pattern.scale,
                                        pattern.angle, pattern.cross));
}

template <class List, class Convert>
py::list list_of(const List& list, Convert convert) {
  py::list result;
  for (const auto& entry : list) result.append(convert(entry));
  return result;
}

/// What a value of a kind is called where Python gives another one.
const char* expected(Value::Kind kind) {
  switch (kind) {
    case Value::Kind::YesNo:
      return "a bool";
    case Value::Kind::WholeNumber:
      return "an int";
    case Value::Kind::Number:
      return "a float";
    case Value::Kind::Text:
      return "a str";
    case Value::Kind::Texts:
      return "strings";
    case Value::Kind::Numbers:
      return "numbers";
    case Value::Kind::Color:
      return "a veldra.Color";
    case Value::Kind::Pattern:
      return "a veldra.Pattern";
    case Value::Kind::Point:
      return "a veldra.Point";
    case Value::Kind::Layers:
    case Value::Kind::Nothing:
      break;
  }
  return "something else";
}

[[noreturn]] void refuse(const FieldDescription& field, const py::handle& given) {
  throw py::type_error(field.name() + " takes " + expected(field.kind) + ", not " +
                       std::string(py::repr(given)));
}

double number_of(const FieldDescription& field, const py::handle& given) {
  const bool is_number = !PyBool_Check(given.ptr()) && !PyUnicode_Check(given.ptr());
  const double number = is_number ? PyFloat_AsDouble(given.ptr()) : -1.0;
  if (!is_number || PyErr_Occurred() != nullptr) {
    PyErr_Clear();
    refuse(field, given);
  }
  const bool measures =
      field.measure != kit::Measure::None || field.origin == kit::Origin::Quantity;
  if (std::isfinite(number) && (number >= 0 || !measures)) return number;
  throw kit::FieldError(field.name(), std::string(py::str(given)),
                        measures ? "it must be a number, 0 or greater" : "it must be finite");
}

long long whole_number_of(const FieldDescription& field, const py::handle& given) {
  // Whole numbers of numpy are numbers as well.
  if (PyBool_Check(given.ptr()) || !PyIndex_Check(given.ptr())) refuse(field, given);
  const auto whole = py::reinterpret_steal<py::object>(PyNumber_Index(given.ptr()));
  if (!whole) throw py::error_already_set();
  const long long number = PyLong_AsLongLong(whole.ptr());
  if (number == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
  return number;
}

/// Of Python, or of numpy.
bool yes_or_no_of(const FieldDescription& field, const py::handle& given) {
  py::detail::make_caster<bool> yes;
  if (!yes.load(given, false)) refuse(field, given);
  return static_cast<bool>(yes);
}

bool is_list(const py::handle& given) {
  return !PyUnicode_Check(given.ptr()) && !PyBytes_Check(given.ptr()) &&
         py::isinstance<py::iterable>(given);
}

/// The parts of a colour, a hatch or a point, each a number but for the first of a hatch.
py::sequence parts_of(const FieldDescription& field, const py::handle& given, std::size_t count) {
  if (PyUnicode_Check(given.ptr()) || !PySequence_Check(given.ptr())) refuse(field, given);
  auto parts = py::reinterpret_borrow<py::sequence>(given);
  if (parts.size() != count) refuse(field, given);
  return parts;
}

Pattern pattern_of(const FieldDescription& field, const py::handle& given) {
  const auto parts = parts_of(field, given, 4);
  Pattern result(number_of(field, parts[1]), number_of(field, parts[2]),
                 py::object(parts[3]).cast<bool>());
  result.name = text_of(py::object(parts[0])).string();
  return result;
}

Value value_of_list(const FieldDescription& field, const py::handle& given) {
  if (!is_list(given)) refuse(field, given);
  if (field.kind == Value::Kind::Texts) {
    Value::Texts texts;
    for (const auto& entry : given) texts.push_back(text_of(entry).utf8);
    return texts;
  }
  Value::Numbers numbers;
  for (const auto& entry : given) numbers.push_back(number_of(field, entry));
  return numbers;
}

Value value_of_parts(const FieldDescription& field, const py::handle& given) {
  if (field.kind == Value::Kind::Pattern) return pattern_of(field, given);
  if (field.kind == Value::Kind::Point) {
    const auto parts = parts_of(field, given, 2);
    return Point2d(number_of(field, parts[0]), number_of(field, parts[1]));
  }
  const auto parts = parts_of(field, given, 4);
  return Color(number_of(field, parts[0]), number_of(field, parts[1]), number_of(field, parts[2]),
               number_of(field, parts[3]));
}

}  // namespace

py::str as_python(const std::string& text) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace"));
}

py::object as_python(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Nothing:
      return py::none();
    case Value::Kind::YesNo:
      return py::bool_(value.as<bool>());
    case Value::Kind::WholeNumber:
      return py::int_(value.as<long long>());
    case Value::Kind::Number:
      return py::float_(value.as<double>());
    case Value::Kind::Text:
      return as_python(value.as<std::string>());
    case Value::Kind::Texts:
      return list_of(value.as<Value::Texts>(), [](const auto& text) { return as_python(text); });
    case Value::Kind::Numbers:
      return list_of(value.as<Value::Numbers>(), [](double number) { return py::float_(number); });
    case Value::Kind::Color:
      return color(value.as<Color>());
    case Value::Kind::Pattern:
      return pattern(value.as<Pattern>());
    case Value::Kind::Point:
      return point(value.as<Point2d>());
    case Value::Kind::Layers:
      break;
  }
  return list_of(value.as<Value::Layers>(), [](const kit::LayerValue& layer) {
    return py::make_tuple(as_python(layer.material), layer.thickness, layer.function);
  });
}

Value value_for(const FieldDescription& field, const py::handle& given) {
  if (given.is_none()) return {};
  switch (field.kind) {
    case Value::Kind::YesNo:
      return yes_or_no_of(field, given);
    case Value::Kind::WholeNumber:
      return whole_number_of(field, given);
    case Value::Kind::Number:
      return number_of(field, given);
    case Value::Kind::Text:
      if (!PyUnicode_Check(given.ptr())) refuse(field, given);
      return text_of(given).utf8;
    case Value::Kind::Texts:
    case Value::Kind::Numbers:
      return value_of_list(field, given);
    case Value::Kind::Color:
    case Value::Kind::Pattern:
    case Value::Kind::Point:
      return value_of_parts(field, given);
    case Value::Kind::Layers:
    case Value::Kind::Nothing:
      break;
  }
  refuse(field, given);
}

}  // namespace veldra::python
