// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_CSV_HPP
#define VELDRA_TOOL_CSV_HPP

#include "progress.hpp"

#include <veldra/veldra.hpp>

#include <string>

namespace veldra_tool {

/// Who reads a table: programs get each text as it is; people, on a terminal, get control
/// characters as escapes.
enum class CsvFor { Programs, People };

/// The materials, compositions and their layers of a library as one table of comma-separated
/// values (RFC 4180), one row each. Each custom property has a column of its own, headed
/// `property:NAME`, or `property:KIND:NAME` where the name alone would not tell it from others. A
/// text that a spreadsheet would take for a formula has an apostrophe before it.
std::string csv_of(const veldra::Library& library, CsvFor reader, Progress& progress);

}  // namespace veldra_tool

#endif
