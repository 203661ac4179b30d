// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_FORMAT_HPP
#define VELDRA_TOOL_IMPORT_FORMAT_HPP

#include "import/json_tree.hpp"

#include <string>

namespace veldra_tool {

/// The formats that there are readers for.
enum class Format { Idf, EpJson, Catalogue };

const char* name_of(Format format);

/// Throws `Failure` when the bytes of a file are no text, are nothing, or are of a format that its
/// beginning tells and that there is no reader for. The sentence says what the file seems to be.
void require_readable(const std::string& content, const std::string& file);

/// The format of a JSON document. Throws `Failure`, as above, when it is another one.
Format format_of(const JsonNode& document, const std::string& file);

/// Throws `Failure`, as above, when a text that is no JSON is no IDF.
void require_idf(const std::string& text, const std::string& file);

}  // namespace veldra_tool

#endif
