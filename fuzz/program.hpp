// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_FUZZ_PROGRAM_HPP
#define VELDRA_FUZZ_PROGRAM_HPP

#include "support/database.hpp"
#include "support/temporary.hpp"
#include "support/thrown.hpp"

#include "failure.hpp"
#include "host.hpp"
#include "text.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

/// What the harnesses share that run commands of the program.
namespace veldra_fuzz {

inline void expect(bool condition, const std::string& what) {
  if (condition) return;
  std::cerr << what << std::endl;
  std::abort();
}

/// Runs a command of the program; gives the sentence with which it failed, and in `notes` what it
/// had to say besides. A dry run that tells of clashes fails without throwing.
inline std::string run(std::vector<std::string> arguments, std::string* notes = nullptr) {
  std::string sentence;
  const auto thrown = veldra_tests::thrown_by([&] {
    veldra_tool::Host host;
    std::reverse(arguments.begin(), arguments.end());  // as the parser wants them
    try {
      host.arguments.parse(arguments);
    } catch (const veldra_tool::Failure& failure) {
      sentence = failure.what();
    }
    if (host.status == veldra_tool::Status::Failed) sentence = host.notes;
    if (notes != nullptr) *notes = host.notes;
  });
  if (!(thrown == "")) std::cerr << thrown << std::endl;
  expect(thrown == "", "something else than a sentence was thrown");
  return sentence;
}

inline std::string export_of(const std::string& library,
                             const veldra_tests::TemporaryFolder& folder) {
  const std::string exported = folder / "exported.json";
  const std::string sentence = run({"export", library, "-o", exported, "--force"});
  expect(sentence.empty(), "cannot be exported: " + sentence);
  return veldra_tests::read_file(exported);
}

/// What is exported can be imported, and exported again with the same text.
inline void expect_round_trip(const std::string& library,
                              const veldra_tests::TemporaryFolder& folder) {
  const std::string text = export_of(library, folder);
  const std::string again = folder / "again.lib";
  const std::string sentence = run({"import", again, folder / "exported.json"});
  expect(sentence.empty(), "what was exported cannot be imported: " + sentence);
  const std::string second = export_of(again, folder);
  if (second != text) std::cerr << text << second;
  expect(second == text, "what was exported is exported otherwise after its import");
  std::remove(again.c_str());
}

}  // namespace veldra_fuzz

#endif
