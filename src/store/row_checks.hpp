// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_ROW_CHECKS_HPP
#define VELDRA_STORE_ROW_CHECKS_HPP

#include "store/file_schema.hpp"

#include <veldra/values.hpp>

#include <string>
#include <vector>

namespace veldra {

/// A question to the rows of a file. Each row of the answer is a finding.
struct RowCheck {
  ObjectType type;                  ///< the kind of the objects found; 0 for the file
  std::vector<std::string> tables;  ///< which are read
  std::string query;                ///< gives id, name and sentence; for the file a sentence
};

/// All questions to the rows of a file with the expected schema.
std::vector<RowCheck> row_checks(const FileSchema& expected);

}  // namespace veldra

#endif
