// SPDX-License-Identifier: GPL-2.0-or-later
#include "objects.hpp"
#include "values.hpp"

#include <veldra/kit/fields.hpp>

#include <iterator>

namespace veldra::python {

namespace {

template <class T>
using Table = kit::Fields<T>;

/// The fields of an object, with lengths in the unit of its library. All tables of a class have the
/// same fields in the same places.
template <class T>
const Table<T>& table_for(const T& object) {
  static const Table<T> inches(Unit::Inches);
  const auto library = object.library();
  return library && library->unit() == Unit::Inches ? inches : kit::built_in_fields<T>();
}

template <class T>
const kit::Field<T>& field_at(const T& object, std::ptrdiff_t index) {
  return *std::next(table_for(object).begin(), index);
}

/// The functions of a property: the one that reads, and the one that writes or None.
template <class T>
py::tuple accessors_of(const kit::Field<T>& field, std::ptrdiff_t index) {
  const py::cpp_function read([index](const T& object) {
    require_readable(object);
    return as_python(field_at(object, index).get(object));
  });
  if (!field.writable()) return py::make_tuple(read, py::none());
  const py::cpp_function write([index](T& object, const py::object& given) {
    require_writable(object);
    const auto& written = field_at(object, index);
    try {
      written.set(object, value_for(written, given));
    } catch (const kit::FieldError&) {
      raise(std::current_exception(), {"", py::cast(object.shared_from_this())});
    }
  });
  return py::make_tuple(read, write);
}

/// The class in Python of the values of a kind.
const char* class_of(kit::Value::Kind kind) {
  switch (kind) {
    case kit::Value::Kind::YesNo:
      return "bool";
    case kit::Value::Kind::WholeNumber:
      return "int";
    case kit::Value::Kind::Number:
      return "float";
    case kit::Value::Kind::Text:
      return "str";
    case kit::Value::Kind::Texts:
      return "list[str]";
    case kit::Value::Kind::Numbers:
      return "list[float]";
    case kit::Value::Kind::Color:
      return "Color";
    case kit::Value::Kind::Pattern:
      return "Pattern";
    case kit::Value::Kind::Point:
      return "Point";
    case kit::Value::Kind::Layers:
      return "Layers";
    case kit::Value::Kind::Nothing:
      break;
  }
  return "None";
}

std::string unit_of(const kit::FieldDescription& field) {
  if (field.measure == kit::Measure::Length) return "the unit of the library";
  return kit::unit_text(field.measure, Unit::Millimetres);
}

py::dict description_of(const kit::FieldDescription& field) {
  py::dict result;
  result["name"] = as_python(field.name());
  result["label"] = as_python(field.label);
  result["unit"] = as_python(unit_of(field));
  result["type"] = class_of(field.kind);
  result["aliases"] = py::list();
  for (const auto& alias : field.aliases) result["aliases"].cast<py::list>().append(alias);
  result["unique"] = field.unique;
  return result;
}

/// A description of each field with its accessors, in the order of the table.
py::list fields_of(int kind) {
  return kit::with_class_of(static_cast<ObjectType>(kind), [](auto of) {
    using T = typename decltype(of)::type;
    py::list result;
    std::ptrdiff_t index = 0;
    for (const auto& field : kit::built_in_fields<T>()) {
      py::dict description = description_of(field);
      const py::tuple accessors = accessors_of(field, index++);
      description["read"] = accessors[0];
      description["write"] = accessors[1];
      result.append(description);
    }
    return result;
  });
}

}  // namespace

void bind_fields(py::module_& module) { module.def("_fields_of", &fields_of, py::arg("kind")); }

}  // namespace veldra::python
