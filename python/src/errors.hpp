// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_PYTHON_ERRORS_HPP
#define VELDRA_PYTHON_ERRORS_HPP

#include <pybind11/pybind11.h>

#include <exception>
#include <string>

namespace veldra::python {

namespace py = pybind11;

/// What an error is about, as far as the caller knows.
struct About {
  std::string file;   ///< the name of a file; empty for none
  py::object object;  ///< an object of Python; empty or None for none
};

/// Raises the exception `name` of `veldra._errors`.
[[noreturn]] void raise(const char* name, const std::string& sentence, const About& about = {});

/// Raises what stands in Python for an exception of C++. Exceptions of Python stay as they are.
[[noreturn]] void raise(const std::exception_ptr& error, const About& about);

/// Has exceptions that reach Python by no other way come as those of `veldra._errors`.
void translate_errors();

}  // namespace veldra::python

#endif
