// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_IFC_MODEL_READER_HPP
#define VELDRA_BENCH_IFC_MODEL_READER_HPP

#include <cstddef>
#include <string>

namespace veldra_bench {

/// Whether IfcPlusPlus was there when this was built.
bool has_ifc_model_reader();

/// Loads a model with IfcPlusPlus, and gives how many entities it finds; it changes the text.
std::size_t entities_in_ifc(std::string& text);

}  // namespace veldra_bench

#endif
