// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_DRAWING_CHARTS_HPP
#define VELDRA_KIT_DRAWING_CHARTS_HPP

#include "kit/drawing/svg.hpp"
#include "kit/drawing/words.hpp"

#include <veldra/kit/physics_moisture.hpp>

namespace veldra::kit {

/// The height of the charts with what stands around them.
constexpr double charts_height = 74;

/// Draws two charts side by side: the pressures of vapour through the section in its wettest month,
/// over s_d, and what is accumulated in each month of the year.
void draw_charts(Svg& svg, const physics::MoistureYear& year, const Words& words, Point origin);

}  // namespace veldra::kit

#endif
