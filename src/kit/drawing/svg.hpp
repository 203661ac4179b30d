// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_DRAWING_SVG_HPP
#define VELDRA_KIT_DRAWING_SVG_HPP

#include <cstddef>
#include <string>

namespace veldra::kit {

/// A text as it stands in XML. Characters that XML does not allow or that could steer a terminal
/// become U+FFFD.
std::string xml_text(const std::string& text);

/// A length or coordinate in millimetres of paper, to a hundredth.
std::string paper(double millimetres);

struct Point {
  double x;
  double y;
};

enum class Anchor { Start, Middle, End };

struct TextStyle {
  double size = 2.6;
  Anchor anchor = Anchor::Start;
  bool bold = false;
  bool italic = false;
  const char* color = "#1a1a1a";
  double turn = 0;  ///< degrees, about the point of the text
};

/// Collects the elements of a drawing. Lengths are millimetres of paper.
class Svg {
 public:
  void line(Point from, Point to, double width, const char* color = "#1a1a1a");
  void circle(Point center, double radius, const std::string& fill);
  void text(Point at, const std::string& text, const TextStyle& style);

  /// An element as it is.
  void raw(const std::string& element) { elements_ += element + "\n"; }

  /// All elements of another drawing.
  void add(const Svg& other) { elements_ += other.elements_; }

  /// The number of bytes of all elements.
  std::size_t size() const { return elements_.size(); }

  /// The whole document.
  std::string document(double width, double height, const std::string& title,
                       const std::string& description, const char* language) const;

 private:
  std::string elements_;
};

}  // namespace veldra::kit

#endif
