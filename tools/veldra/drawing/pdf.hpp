// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_DRAWING_PDF_HPP
#define VELDRA_TOOL_DRAWING_PDF_HPP

#include <string>

namespace veldra_tool {

/// A drawing as a PDF of one page of its size. librsvg and cairo do it, which are loaded when they
/// are needed first. Throws `Failure` where they are not there or cannot.
std::string pdf_of(const std::string& svg, const std::string& title);

}  // namespace veldra_tool

#endif
