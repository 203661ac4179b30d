// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/writers.hpp"

namespace veldra::kit {

/// In a build without the library that reads XML.
FormatModule gbxml_module() {
  return {
      "gbXML", {"gbxml", "xml"}, [](const FileContent&) { return false; }, nullptr, write_gbxml};
}

}  // namespace veldra::kit
