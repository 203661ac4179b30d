#ifndef VELDRA_TOOL_OUTPUT_HPP
#define VELDRA_TOOL_OUTPUT_HPP

#include <string>

namespace veldra_tool {

/// Writes a text into a file, or to standard output where the name is empty or "-". A file is
/// written whole or not at all. Throws `Failure`.
void write_output(const std::string& file, const std::string& text);

}  // namespace veldra_tool

#endif
