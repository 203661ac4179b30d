// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_DRAWING_HPP
#define VELDRA_KIT_DRAWING_HPP

#include <veldra/composition.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/physics.hpp>
#include <veldra/kit/physics_moisture.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veldra::kit {

/// How build-ups are drawn.
struct DrawingRules {
  /// Of the library, for language and decimal sign: German where it begins with "de", else English.
  std::string locale;

  std::optional<bool> lying;                ///< else as the type says
  std::optional<Composition::Type> type;    ///< else that of the build-up
  physics::BoundaryStatement boundary;      ///< what they border on
  std::optional<physics::Climate> climate;  ///< for charts of moisture; none are drawn without
};

/// Draws a sheet as wide as A4 on its side, with a section through each build-up, true to scale
/// when it is printed at its size, beside the list of its layers. Walls stand, with the outside on
/// the left; roofs lie, with the outside above; floors lie, with the outside below. The lengths of
/// the build-ups are in the unit `unit`, and each layer has a material.
///
/// The answer is an SVG document, the same for the same build-ups.
///
/// Throws: `std::bad_alloc`, and `utf8::invalid_utf16` for a name that is malformed.
VELDRA_KIT_EXPORT std::string draw_sheet(
    const std::vector<std::shared_ptr<Composition>>& compositions, Unit unit,
    const DrawingRules& rules = {});

/// A drawing, which `draw_sheet` has made, in an HTML page that needs and loads nothing else.
/// `title` is plain text.
///
/// Throws: `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string page_of(const std::string& svg, const std::string& title,
                                      const std::string& locale);

/// A drawing as a PDF of one page of its size. librsvg and cairo make it, which are loaded when
/// they are needed first.
///
/// Throws:
/// - `Error`: they are not there, or cannot.
/// - `std::bad_alloc`.
VELDRA_KIT_EXPORT std::string pdf_of(const std::string& svg, const std::string& title);

}  // namespace veldra::kit

#endif
