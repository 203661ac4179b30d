#include "arguments.hpp"
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

void print(Spool& output, const std::vector<Finding>& findings, bool json) {
  if (json) {
    Json list = Json::array();
    for (const auto& finding : findings) {
      Json entry = Json::object();
      entry["object"] = finding.object;
      entry["finding"] = finding.sentence;
      list.push_back(entry);
    }
    return print_json(output, list);
  }
  for (const auto& finding : findings) output.print("{}: {}\n", finding.object, finding.sentence);
  if (findings.empty()) output.print("Nothing is wrong.\n");
}

/// Only a file that says its version is opened as a library.
bool says_its_version(const std::string& file) {
  using Kind = veldra::Library::Recognition::Kind;
  return recognised(file) != Kind::WithoutVersion;
}

Finding version_is_missing() {
  return {"file", "It does not say its version any more, so that it is not opened as a library"};
}

void check(const Arguments& arguments, Host& host) {
  const auto findings = says_its_version(arguments.file)
                            ? reading(arguments.file, findings_in)
                            : std::vector<Finding>{version_is_missing()};
  print(host.output, findings, arguments.json);
  if (!findings.empty()) host.status = Status::Findings;
}

}  // namespace

void add_check(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "check", "Look for what is wrong in a library; the exit status is 3 if anything is");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_json(command, arguments->json);
  add_example(command, "veldra check office.lib");
  command.callback([arguments, &host] { check(*arguments, host); });
}

}  // namespace veldra_tool
