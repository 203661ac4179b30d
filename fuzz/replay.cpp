// SPDX-License-Identifier: GPL-2.0-or-later
//
// Runs a fuzz harness on all files of a folder, in place of libFuzzer. A file that fails ends the
// program, as it does there.

#include "support/temporary.hpp"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: " << arguments[0] << " <folder>\n";
    return 2;
  }
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  for (const std::string& path : paths) {
    std::cout << path << std::endl;
    const std::string bytes = veldra_tests::read_file(path);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::cout << paths.size() << " inputs\n";
  return paths.empty() ? 1 : 0;
}
