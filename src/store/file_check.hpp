// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_FILE_CHECK_HPP
#define VELDRA_STORE_FILE_CHECK_HPP

#include "store/database.hpp"
#include "store/finding.hpp"

namespace veldra {

/// What is wrong with the file of a library; at most 100 of each sort.
Findings check_file(Database& database);

}  // namespace veldra

#endif
