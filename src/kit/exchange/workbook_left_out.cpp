// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/format_modules.hpp"

namespace veldra::kit {

/// In a build without the libraries for workbooks.
FormatModule workbook_module() {
  return {"XLSX", {"xlsx"}, [](const FileContent&) { return false; }, nullptr, nullptr};
}

}  // namespace veldra::kit
