// SPDX-License-Identifier: GPL-2.0-or-later
//
// Writes the manual pages and the completions of the program, from its own description:
//
//   veldra_manual <folder>
#include "host.hpp"
#include "pages.hpp"

#include <veldra/veldra.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace veldra_manual {

namespace {

void write(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  out << text;
  out.close();
  if (!out) throw std::runtime_error(file.string() + " cannot be written");
}

void write_all(const std::filesystem::path& folder) {
  const veldra_tool::Host host;
  const Description program = describe(host.arguments, veldra::version_text());
  const std::string& name = program.name;
  write(folder / "man" / (name + ".1"), man_page(program));
  for (const auto& command : program.commands) {
    const std::string page = name + "-" + command.name;
    write(folder / "man" / (page + ".1"), man_page(program, command));
    write(folder / "markdown" / (page + ".md"), markdown_page(program, command));
  }
  write(folder / "completions" / "bash" / name, bash_completion(program));
  write(folder / "completions" / "zsh" / ("_" + name), zsh_completion(program));
  write(folder / "completions" / "fish" / (name + ".fish"), fish_completion(program));
}

}  // namespace

}  // namespace veldra_manual

int main(int count, char** values) {
  if (count != 2) {
    std::fputs("veldra_manual: which folder?\n", stderr);
    return 2;
  }
  try {
    veldra_manual::write_all(values[1]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "veldra_manual: %s\n", error.what());
    return 1;
  }
}
