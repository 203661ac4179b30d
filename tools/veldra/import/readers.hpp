#ifndef VELDRA_TOOL_IMPORT_READERS_HPP
#define VELDRA_TOOL_IMPORT_READERS_HPP

#include "import/json_tree.hpp"
#include "import/source_model.hpp"

#include <string>

namespace veldra_tool {

/// Reads a text of the IDF format; `file` is for messages. Throws `Failure`.
SourceModel read_idf(const std::string& text, const std::string& file);

/// Reads a document of the epJSON format. Throws `Failure`.
SourceModel read_epjson(const JsonNode& document, const std::string& file);

}  // namespace veldra_tool

#endif
