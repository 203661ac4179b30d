// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_RECOGNITION_HPP
#define VELDRA_KIT_EXCHANGE_RECOGNITION_HPP

#include "kit/exchange/json_tree.hpp"

#include <optional>
#include <string>

namespace veldra::kit {

/// The bytes of a file as what they are.
struct FileContent {
  std::string file;                  ///< for messages
  std::string text;                  ///< in UTF-8; empty where it is JSON
  std::optional<JsonNode> document;  ///< where it is JSON
};

/// Makes a text or a JSON document of the bytes of a file. Throws `SourceError` when they are
/// neither, are nothing, or are of a format that their beginning tells and that there is no reader
/// for. The sentence says what the file seems to be.
FileContent content_from(const std::string& file, std::string bytes);

/// Throws `SourceError`, as above, for a content that no reader knows.
[[noreturn]] void refuse_unknown(const FileContent& content);

}  // namespace veldra::kit

#endif
