#ifndef VELDRA_STORE_ROW_EXAMINATION_HPP
#define VELDRA_STORE_ROW_EXAMINATION_HPP

#include "store/file_schema.hpp"

#include <veldra/values.hpp>

#include <string>
#include <vector>

namespace veldra {

/// A question to the rows of a file. Each row of the answer is a finding.
struct RowExamination {
  ObjectType type;                  ///< the kind of the objects found; 0 for the file
  std::vector<std::string> tables;  ///< which are read
  std::string query;                ///< gives id, name and sentence; for the file a sentence
};

/// All questions to the rows of a file with the expected schema.
std::vector<RowExamination> row_examinations(const FileSchema& expected);

}  // namespace veldra

#endif
