#ifndef VELDRA_TOOL_OUTPUT_HPP
#define VELDRA_TOOL_OUTPUT_HPP

#include "json.hpp"

#include <string>

namespace veldra_tool {

/// Whether an output of that name goes to standard output.
bool is_standard_output(const std::string& file);

/// Writes a text into a file, or to `output` where the name is empty or "-". A file is
/// written whole or not at all. Throws `Failure`.
void write_output(Spool& output, const std::string& file, const std::string& text);

/// What a script is told of a text that was written into a file.
Json written_to_json(const std::string& file, const std::string& format, const std::string& text);

}  // namespace veldra_tool

#endif
