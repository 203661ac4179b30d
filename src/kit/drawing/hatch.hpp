// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_DRAWING_HATCH_HPP
#define VELDRA_KIT_DRAWING_HATCH_HPP

#include <veldra/veldra.hpp>

#include <string>

namespace veldra::kit {

/// How the cut through a material looks.
struct CutStyle {
  std::string fill;  ///< colour
  double fill_opacity;
  std::string line;   ///< colour of the hatch
  std::string hatch;  ///< its name, in lower case
  double scale;
  double angle;
  bool cross;
};

/// The style that a material asks for; where it asks for nothing, one that fits what is known of
/// it.
CutStyle cut_style(const Material& material);

/// The style of a bridge of that conductivity in W/(m K).
CutStyle bridge_style(double conductivity);

/// The hatch of a layer as SVG elements, in a frame in which the layer reaches from 0 to `width`
/// across and from 0 to `length` along. What lies outside must be clipped.
std::string hatch_elements(const CutStyle& style, double width, double length);

}  // namespace veldra::kit

#endif
