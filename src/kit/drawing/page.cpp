// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/drawing.hpp>

#include "kit/drawing/svg.hpp"
#include "kit/drawing/words.hpp"

#include <fmt/format.h>

namespace veldra::kit {

std::string page_of(const std::string& svg, const std::string& title, const std::string& locale) {
  const auto begin = svg.find("<svg");
  return fmt::format(R"(<!DOCTYPE html>
<html lang="{0}">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
<title>{1}</title>
<style>body {{ margin: 0; background: #ffffff; color: #1a1a1a }} svg {{ max-width: 100%; height: auto }}</style>
</head>
<body>
<main>
{2}</main>
</body>
</html>
)",
                     Words(locale).code(), xml_text(title), svg.substr(begin));
}

}  // namespace veldra::kit
