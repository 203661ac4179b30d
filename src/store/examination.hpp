#ifndef VELDRA_STORE_EXAMINATION_HPP
#define VELDRA_STORE_EXAMINATION_HPP

#include "store/database.hpp"

#include <string>
#include <vector>

namespace veldra {

/// What is wrong with the file of a library, a sentence each; at most 100 of each sort. The texts
/// are UTF-8, whatever the names in the file are.
std::vector<std::string> examine(Database& database);

}  // namespace veldra

#endif
