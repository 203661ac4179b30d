// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_WORKBOOK_PROOF_HPP
#define VELDRA_KIT_EXCHANGE_WORKBOOK_PROOF_HPP

#include <cstddef>
#include <string>
#include <vector>

namespace veldra::kit {

/// Whether a workbook has all its parts to their ends, and as many rows in each of its sheets.
///
/// The library that writes workbooks puts their parts together in temporary files, and does not
/// notice when the disk of these is full: what did not fit is missing then.
bool is_whole_workbook(const std::string& path, const std::vector<std::size_t>& rows);

}  // namespace veldra::kit

#endif
