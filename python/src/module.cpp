// SPDX-License-Identifier: GPL-2.0-or-later
#include "errors.hpp"
#include "objects.hpp"

#include <veldra/version.hpp>

#include <pybind11/pybind11.h>

PYBIND11_MODULE(_veldra, module) {
  using namespace veldra::python;
  module.doc() = "The compiled part of veldra. Import veldra, not this.";
  py::options options;
  options.disable_function_signatures();
  module.attr("__version__") = veldra::version_text();
  translate_errors();
  bind_objects(module);
  bind_fields(module);
  bind_library(module);
  bind_kit(module);
  bind_drawing(module);
}
