// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_IMPORT_SOURCES_HPP
#define VELDRA_TOOL_IMPORT_SOURCES_HPP

#include "import/format.hpp"
#include "import/import_set.hpp"
#include "import/json_tree.hpp"

#include <optional>
#include <string>

namespace veldra_tool {

/// A file that is to be imported, as far as it can be read without knowing the others.
class Source {
 public:
  /// Reads the file; its content tells the format. Throws `Failure`.
  explicit Source(const std::string& file);

  const std::string& file() const { return file_; }
  const char* format() const { return name_of(format_); }

  /// Whether the file has anything that a library has a place for.
  bool has_objects() const;

  /// The unit that the file asks for, if it does.
  std::optional<veldra::Unit> unit() const;

  /// Adds what the file holds.
  void add_to(ImportSet& set, veldra::Unit unit, SourceReport& report) const;

 private:
  std::string file_;
  Format format_ = Format::Idf;
  SourceModel model_;  ///< of IDF and epJSON
  JsonNode document_;  ///< of the program's own JSON
};

}  // namespace veldra_tool

#endif
