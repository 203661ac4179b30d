// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_RECOGNITION_HPP
#define VELDRA_KIT_EXCHANGE_RECOGNITION_HPP

#include "kit/exchange/json_tree.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace veldra::kit {

/// How the bytes of a file stood for characters.
enum class Encoding { Utf8, Utf16, Latin1, Binary };

/// The bytes of a file as what they are.
struct FileContent {
  std::string file;                    ///< for messages
  std::string text;                    ///< in UTF-8; empty where it is JSON; the bytes of a binary
                                       ///< format
  std::optional<JsonNode> document;    ///< where it is JSON
  Encoding encoding = Encoding::Utf8;  ///< what the bytes were
};

/// Whether a text is XML whose beginning has the root of gbXML.
bool is_gbxml(const std::string& text);

/// Makes a text or a JSON document of the bytes of a file. Throws `SourceError` when they are
/// neither, are nothing, or are of a format that their beginning tells and that there is no reader
/// for. The sentence says what the file seems to be.
FileContent content_from(const std::string& file, std::string bytes);

/// Whether a text begins as a STEP file does (ISO 10303-21).
bool is_step(std::string_view text);

/// Throws `SourceError`, as above, for a content that no reader knows.
[[noreturn]] void refuse_unknown(const FileContent& content);

}  // namespace veldra::kit

#endif
