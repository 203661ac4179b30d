// SPDX-License-Identifier: GPL-2.0-or-later
#include "otherwise.hpp"

namespace veldra_bench {

std::unique_ptr<MaterialReader> sqlitecpp_reader(const std::string&) { return nullptr; }
bool has_sqlitecpp() { return false; }

}  // namespace veldra_bench
