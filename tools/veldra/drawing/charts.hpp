// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_DRAWING_CHARTS_HPP
#define VELDRA_TOOL_DRAWING_CHARTS_HPP

#include "drawing/svg.hpp"
#include "drawing/words.hpp"
#include "kit.hpp"

namespace veldra_tool {

/// The height of the charts with what stands around them.
constexpr double charts_height = 74;

/// Draws two charts side by side: the pressures of vapour through the section in its wettest month,
/// over s_d, and what is accumulated in each month of the year.
void draw_charts(Svg& svg, const kit::physics::MoistureYear& year, const Words& words,
                 Point origin);

}  // namespace veldra_tool

#endif
