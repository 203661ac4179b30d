// SPDX-License-Identifier: GPL-2.0-or-later
//
// Lists all materials of a file with three attributes, for python_lists.py to compare with:
//
//   veldra_list_file <file> <rounds>
//
// Prints the least processor time of a round in milliseconds. A round opens the file, reads the
// list, looks at the attributes and frees all of it.
#include <veldra/veldra.hpp>

#include <algorithm>
#include <ctime>
#include <exception>
#include <iostream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

double processor_milliseconds() {
  timespec time{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
}

/// How many characters the attributes have, so that none of them can be left out.
std::size_t listed(const char* file) {
  const auto library = veldra::Library::openExisting(file, true);
  std::vector<std::shared_ptr<veldra::Material>> materials;
  library->get(materials);
  std::size_t characters = 0;
  for (const auto& material : materials) {
    characters += material->name().utf8().size() + material->description().utf8().size() +
                  material->manufacturer().utf8().size();
  }
  return characters;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "veldra_list_file <file> <rounds>\n";
    return 2;
  }
  try {
    double least = std::numeric_limits<double>::infinity();
    for (int round = std::stoi(arguments[2]); round > 0; --round) {
      const double start = processor_milliseconds();
      if (listed(arguments[1]) == 0) throw std::runtime_error("there is nothing to list");
      least = std::min(least, processor_milliseconds() - start);
    }
    std::cout << least << '\n';
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
