// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_DRAWING_SHEET_HPP
#define VELDRA_TOOL_DRAWING_SHEET_HPP

#include "drawing/section.hpp"

#include <veldra/veldra.hpp>

#include <memory>
#include <string>
#include <vector>

namespace veldra_tool {

/// A sheet as wide as A4 on its side, with a section through each build-up, true to scale when it
/// is printed at its size, beside the list of its layers. The answer is an SVG document.
std::string draw_sheet(const std::vector<std::shared_ptr<veldra::Composition>>& compositions,
                       veldra::Unit unit, const DrawingWishes& wishes);

}  // namespace veldra_tool

#endif
