#include "arguments.hpp"
#include "failure.hpp"
#include "findings.hpp"
#include "host.hpp"
#include "json.hpp"
#include "opening.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  bool json = false;
};

void print(const std::vector<Finding>& findings, bool json) {
  if (json) {
    Json list = Json::array();
    for (const auto& finding : findings) {
      Json entry = Json::object();
      entry["object"] = finding.object;
      entry["finding"] = finding.sentence;
      list.push_back(entry);
    }
    return print_json(list);
  }
  for (const auto& finding : findings) fmt::print("{}: {}\n", finding.object, finding.sentence);
  if (findings.empty()) fmt::print("Nothing is wrong.\n");
}

void check(const Arguments& arguments, int& status) {
  const auto library = open_library(arguments.file, Access::Read);
  const auto findings = working_on(arguments.file, [&] { return findings_in(*library); });
  print(findings, arguments.json);
  if (!findings.empty()) status = 3;
}

}  // namespace

void add_check(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "check", "Look for what is wrong in a library; the exit status is 3 if anything is");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_json(command, arguments->json);
  add_example(command, "veldra check office.lib");
  command.callback([arguments, &host] { check(*arguments, host.status); });
}

}  // namespace veldra_tool
