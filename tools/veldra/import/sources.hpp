#ifndef VELDRA_TOOL_IMPORT_SOURCES_HPP
#define VELDRA_TOOL_IMPORT_SOURCES_HPP

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
  const char* format() const;

  /// The unit that the file asks for, if it does.
  std::optional<veldra::Unit> unit() const;

  /// Adds what the file holds.
  void add_to(ImportSet& set, veldra::Unit unit, SourceReport& report) const;

 private:
  enum class Format { Idf, EpJson, Catalogue };

  std::string file_;
  Format format_;
  std::string text_;   ///< of an IDF
  JsonNode document_;  ///< of the others
};

}  // namespace veldra_tool

#endif
