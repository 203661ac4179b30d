#ifndef VELDRA_STORE_EXAMINATION_HPP
#define VELDRA_STORE_EXAMINATION_HPP

#include "store/database.hpp"
#include "store/finding.hpp"

namespace veldra {

/// What is wrong with the file of a library; at most 100 of each sort.
Findings examine(Database& database);

}  // namespace veldra

#endif
