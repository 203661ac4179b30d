#ifndef VELDRA_TOOL_FILES_READING_HPP
#define VELDRA_TOOL_FILES_READING_HPP

#include <string>

namespace veldra_tool {

/// All bytes of a file, a pipe or whatever else can be read. Throws `Failure`, and `Stopped` where
/// the program is asked to stop while it waits for them.
std::string content_of(const std::string& file);

}  // namespace veldra_tool

#endif
