// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_READERS_HPP
#define VELDRA_TOOL_IMPORT_READERS_HPP

#include "import/json_tree.hpp"
#include "import/source_model.hpp"

#include <string>

namespace veldra_tool {

/// Whether a text is of the IDF format, maybe not whole: it has an object of a class of materials
/// or constructions, or of another one that the format is known by, and most of its objects are of
/// classes that can be; or it has nothing but comments.
bool is_idf(const std::string& text);

/// Whether a document is of the epJSON format, maybe with mistakes: it has a class of materials or
/// constructions, or nothing but objects of objects under names that classes can have.
bool is_epjson(const JsonNode& document);

/// Reads a text of the IDF format; `file` is for messages. Throws `Failure`.
SourceModel read_idf(const std::string& text, const std::string& file);

/// Reads a document of the epJSON format. Throws `Failure`.
SourceModel read_epjson(const JsonNode& document, const std::string& file);

}  // namespace veldra_tool

#endif
