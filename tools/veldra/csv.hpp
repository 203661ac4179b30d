#ifndef VELDRA_TOOL_CSV_HPP
#define VELDRA_TOOL_CSV_HPP

#include "progress.hpp"

#include <veldra/veldra.hpp>

#include <string>

namespace veldra_tool {

/// The materials, compositions and their layers of a library as one table of comma-separated
/// values (RFC 4180), one row each. Custom values have columns of their own.
std::string csv_of(const veldra::Library& library, Progress& progress);

}  // namespace veldra_tool

#endif
