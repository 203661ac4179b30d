// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "json.hpp"
#include "opening.hpp"
#include "summary.hpp"
#include "text.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  bool json = false;
};

void print_facts(Spool& output, const Json& facts) {
  const auto line = [&output](const std::string& name, const std::string& value) {
    output.print("{:<16}{}\n", name, printable(value));
  };
  const auto text = [](const Json& value) {
    return value.get<std::string>().empty() ? "(none)" : value.get<std::string>();
  };
  line("GUID", text(facts["guid"]));
  line("Unit", text(facts["unit"]));
  line("Locale", text(facts["locale"]));
  line("Region", text(facts["region"]));
  line("Schema version", fmt::format("{}", facts["schema_version"].get<unsigned long long>()));
  line("Read-only", facts["read_only"].get<bool>() ? "yes" : "no");
  for (const auto& [kind, count] : facts["counts"].items()) {
    line(kind, fmt::format("{}", count.get<unsigned long long>()));
  }
}

void info(const Arguments& arguments, Host& host) {
  const auto facts = reading(
      arguments.file,
      [](const veldra::Library& library) {
        Json all = facts_of(library);
        all["read_only"] = library.readOnly();
        return all;
      },
      Access::Any);
  if (arguments.json) return print_json(host.output, facts);
  print_facts(host.output, facts);
}

}  // namespace

void add_info(Host& host) {
  auto& command =
      *host.arguments.add_subcommand("info", "Tell what a library is and how much is in it");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_json(command, arguments->json);
  add_example(command, "veldra info office.lib");
  command.callback([arguments, &host] { info(*arguments, host); });
}

}  // namespace veldra_tool
