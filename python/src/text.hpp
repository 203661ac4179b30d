// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_PYTHON_TEXT_HPP
#define VELDRA_PYTHON_TEXT_HPP

#include <veldra/string.hpp>

#include <pybind11/pybind11.h>

#include <string>

namespace veldra::python {

namespace py = pybind11;

/// A text that the library can hold, in UTF-8: without a zero character, and without a surrogate.
struct Text {
  std::string utf8;

  String string() const { return String(utf8.c_str()); }
};

/// The name of a file, of whatever Python takes for one.
struct FileName : Text {};

/// Python's text as one of the library's.
///
/// Throws, as exceptions of Python: `TypeError` for anything but a `str`, and `MalformedText`.
Text text_of(py::handle text);

/// A name of a file: a `str`, `bytes` or anything with `__fspath__`.
///
/// Throws: as `text_of`.
FileName file_name_of(py::handle path);

}  // namespace veldra::python

namespace pybind11::detail {

template <>
struct type_caster<veldra::python::Text> {
  PYBIND11_TYPE_CASTER(veldra::python::Text, const_name("str"));

  /// No function has another meaning for what is no text, so that it is told at once.
  bool load(handle source, bool) {
    value = veldra::python::text_of(source);
    return true;
  }
};

template <>
struct type_caster<veldra::python::FileName> {
  PYBIND11_TYPE_CASTER(veldra::python::FileName, const_name("str | os.PathLike[str]"));

  bool load(handle source, bool) {
    value = veldra::python::file_name_of(source);
    return true;
  }
};

}  // namespace pybind11::detail

#endif
