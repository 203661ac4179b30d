// SPDX-License-Identifier: GPL-2.0-or-later
//
// The values of many objects at once, without an object of Python for each object of the library.
#include "objects.hpp"
#include "values.hpp"

#include <pybind11/stl.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

namespace veldra::python {

namespace {

using kit::Value;

/// A value that so many objects have, one after another.
struct Run {
  explicit Run(Value first) : value(std::move(first)) {}

  Value value;
  std::size_t count = 1;
};

/// Whether two values are the same to the last bit: 0 and -0 are equal, but not the same.
bool are_the_same(const Value& left, const Value& right) {
  if (!(left == right)) return false;
  return left.kind() != Value::Kind::Number ||
         std::signbit(left.as<double>()) == std::signbit(right.as<double>());
}

/// The values of a field. Most fields of most catalogues are empty or the same for many objects:
/// what is the same as the value before is only counted, which saves most of the memory and time.
class Column {
 public:
  explicit Column(Value::Kind kind) : kind_(kind) {}

  void add(Value value) {
    ++size_;
    if (value.is_nothing()) ++missing_;
    if (!runs_.empty() && are_the_same(runs_.back().value, value)) {
      ++runs_.back().count;
    } else {
      runs_.emplace_back(std::move(value));
    }
  }

  Value::Kind kind() const noexcept { return kind_; }
  std::size_t size() const noexcept { return size_; }
  bool has_missing() const noexcept { return missing_ != 0; }
  const std::vector<Run>& runs() const noexcept { return runs_; }

 private:
  Value::Kind kind_;
  std::vector<Run> runs_;
  std::size_t size_ = 0;
  std::size_t missing_ = 0;
};

struct Columns {
  std::vector<std::string> names;
  std::vector<Column> values;
};

template <class T>
Columns read_columns(const Library& library,
                     const std::optional<std::vector<std::string>>& wanted) {
  const kit::Fields<T> fields(library);
  Columns result;
  result.names = wanted ? *wanted : fields.names();
  std::vector<const kit::Field<T>*> each;
  for (const auto& name : result.names) {
    each.push_back(&fields.at(name));
    result.values.emplace_back(each.back()->kind);
  }
  library.for_each<T>([&](const std::shared_ptr<T>& object) {
    for (std::size_t i = 0; i < each.size(); ++i) result.values[i].add(each[i]->get(*object));
    return true;
  });
  return result;
}

/// Calls `take(index, object)` for each value in turn. Those of a run are one object, unless it can
/// change.
template <class Take>
void for_each_object(const Column& column, Take take) {
  std::size_t index = 0;
  for (const Run& run : column.runs()) {
    py::object object = as_python(run.value);
    const bool can_change = PyList_Check(object.ptr());
    for (std::size_t left = run.count; left > 0; --left) {
      take(index++, object);
      if (can_change && left > 1) object = as_python(run.value);
    }
  }
}

py::object as_list(const Column& column) {
  py::list result(column.size());
  for_each_object(column, [&](std::size_t index, const py::object& object) {
    PyList_SET_ITEM(result.ptr(), static_cast<Py_ssize_t>(index), object.inc_ref().ptr());
  });
  return result;
}

/// An array of numpy, of the type that numpy calls so. Its memory is reached as any buffer
/// of Python, so that any release of numpy will do, and building needs none.
py::object array(std::size_t size, const char* type) {
  return py::module_::import("numpy").attr("empty")(size, type);
}

template <class Number, class NumberOf>
py::object array_of(const Column& column, const char* type, NumberOf number_of) {
  py::object result = array(column.size(), type);
  const py::buffer_info memory = py::buffer(result).request(true);
  auto* place = static_cast<Number*>(memory.ptr);
  for (const Run& run : column.runs()) place = std::fill_n(place, run.count, number_of(run.value));
  return result;
}

py::object array_of_objects(const Column& column) {
  py::object result = array(column.size(), "object");
  const py::buffer_info memory = py::buffer(result).request(true);
  auto* const places = static_cast<PyObject**>(memory.ptr);
  for_each_object(column, [&](std::size_t index, const py::object& object) {
    Py_XDECREF(std::exchange(places[index], object.inc_ref().ptr()));
  });
  return result;
}

double number_or_nan(const Value& value) {
  if (value.kind() == Value::Kind::Number) return value.as<double>();
  if (value.kind() == Value::Kind::WholeNumber) return static_cast<double>(value.as<long long>());
  return std::numeric_limits<double>::quiet_NaN();
}

py::object as_array(const Column& column) {
  const bool counts = column.kind() == Value::Kind::WholeNumber;
  if (counts && !column.has_missing()) {
    return array_of<std::int64_t>(column, "int64",
                                  [](const Value& value) { return value.as<long long>(); });
  }
  if (counts || column.kind() == Value::Kind::Number) {
    return array_of<double>(column, "float64", number_or_nan);
  }
  if (column.kind() == Value::Kind::YesNo && !column.has_missing()) {
    return array_of<bool>(column, "bool", [](const Value& value) { return value.as<bool>(); });
  }
  return array_of_objects(column);
}

/// While it lives, the interpreter does not look for garbage, of which lists that are being made
/// are none: it would go through all of them again and again.
class WithoutCollection {
 public:
  WithoutCollection() : was_enabled_(PyGC_Disable() != 0) {}
  WithoutCollection(const WithoutCollection&) = delete;
  WithoutCollection& operator=(const WithoutCollection&) = delete;
  ~WithoutCollection() {
    if (was_enabled_) PyGC_Enable();
  }

 private:
  bool was_enabled_;
};

template <class Convert>
py::dict columns_as(LibraryHandle& self, int kind,
                    const std::optional<std::vector<std::string>>& names, Convert convert) {
  const Columns read = of_kind(self, kind, [&](auto of) {
    return read_columns<typename decltype(of)::type>(*self.library, names);
  });
  const WithoutCollection paused;
  py::dict result;
  for (std::size_t i = 0; i < read.names.size(); ++i) {
    result[as_python(read.names[i])] = convert(read.values[i]);
  }
  return result;
}

py::dict columns(LibraryHandle& self, int kind,
                 const std::optional<std::vector<std::string>>& names) {
  return columns_as(self, kind, names, as_list);
}

py::dict arrays(LibraryHandle& self, int kind,
                const std::optional<std::vector<std::string>>& names) {
  return columns_as(self, kind, names, as_array);
}

}  // namespace

void bind_columns(py::class_<LibraryHandle, std::shared_ptr<LibraryHandle>>& library) {
  library.def("_columns", &columns);
  library.def("_arrays", &arrays);
}

}  // namespace veldra::python
