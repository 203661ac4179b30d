// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_FORMATS_HPP
#define VELDRA_TOOL_FORMATS_HPP

#include "kit.hpp"

#include <CLI/CLI.hpp>

#include <string>

namespace veldra_tool {

/// The word for a format in arguments and reports.
std::string word_of(const kit::Format& format);

/// The words for the formats that can be written, as people list them.
std::string writable_formats();

/// The format in which an output is written: the one that is given by its word, name or ending, or
/// else the one of the ending of the output, or else JSON. Throws a `CLI::ParseError` for one that
/// there is no writer for, and where the output has the ending of another one.
const kit::Format& format_for(const std::string& given, const std::string& output);

/// How the tables of a region are written.
struct TableSigns {
  char separator = ',';
  char decimal = '.';
};

/// Adds `--locale`, which says how tables are written.
void add_table_locale(CLI::App& command, std::string& locale);

TableSigns table_signs(const std::string& locale);

}  // namespace veldra_tool

#endif
