// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_XML_DOCUMENT_HPP
#define VELDRA_KIT_EXCHANGE_XML_DOCUMENT_HPP

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace veldra::kit {

/// Tells the lines of places in a text that must outlive it.
class Lines {
 public:
  explicit Lines(const std::string& text);

  /// The line of the character at a place, counted from 1.
  unsigned at(std::size_t place) const;

 private:
  const std::string& text_;
  std::vector<unsigned> counts_;  ///< line ends before each so many bytes
};

/// A document of XML. Entities beside those of XML itself are not known, and what defines some is
/// refused, so that a text is as long as what it stands for.
class XmlDocument {
 public:
  /// Each element, attribute and text takes up to 64 bytes of memory, however short it is.
  static constexpr std::size_t most_parts_of_small = 5'000'000;

  /// A large source may have more of them, as long as they take no more than four times its size.
  static std::size_t most_parts_of(std::size_t bytes_of_source);

  /// Parses a text in UTF-8, which must outlive the document. Throws `SourceError`: it is
  /// malformed, has a document type, or has more parts than that, which is said of `what`.
  XmlDocument(const std::string& text, const std::string& file,
              std::size_t most_parts = most_parts_of_small, const std::string& what = "this");

  pugi::xml_node root() const { return document_.document_element(); }

  /// The line in which an element begins.
  unsigned line_of(const pugi::xml_node& element) const;

  /// The text in an element without blanks around it. Throws `SourceError` for one that is longer
  /// than any value, or that has characters which no text has.
  std::string text_of(const pugi::xml_node& element) const;

  /// The same with the blanks around it.
  std::string whole_text_of(const pugi::xml_node& element) const;

  /// The text of an attribute.
  std::string text_of(const pugi::xml_node& element, const pugi::xml_attribute& attribute) const;

 private:
  std::string checked(const pugi::xml_node& element, std::string text) const;

  std::string file_;
  Lines lines_;
  pugi::xml_document document_;
};

/// The name of an element or attribute without the prefix of its namespace.
std::string local_name(const char* name);

}  // namespace veldra::kit

#endif
