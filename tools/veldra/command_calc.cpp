// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "host.hpp"
#include "json.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "proof.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::string composition;
  ProofWishes wishes;
  bool json = false;
};

void calculate(const Arguments& arguments, Host& host) {
  const auto asked = read_wishes(arguments.wishes);
  reading(arguments.file, [&](const veldra::Library& library) {
    const auto composition = find_object<veldra::Composition>(library, arguments.composition);
    const auto proof = proof_of(*composition, library.unit(), asked);
    if (!proof.is_complete()) host.status = Status::Findings;
    if (arguments.json) return print_json(host.output, proof_json(proof, *composition));
    print_proof(host.output, proof, *composition, library.unit());
  });
}

}  // namespace

void add_calc(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "calc", "Compute a build-up and print the whole proof: heat, mass, storage, moisture");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command
      .add_option("COMPOSITION", arguments->composition,
                  fmt::format("The build-up, {}", naming_help))
      ->required()
      ->type_name("");
  add_proof_wishes(command, arguments->wishes);
  add_json(command, arguments->json);
  add_example(command, "veldra calc office.lib 'Cavity wall' --climate climate.csv --target-u 0.15",
              "there is no U-value, a value cannot be used, or what was asked for cannot be had");
  command.callback([arguments, &host] { calculate(*arguments, host); });
}

}  // namespace veldra_tool
