// SPDX-License-Identifier: GPL-2.0-or-later
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

/// What keeps a library from being opened and looked at; empty where nothing does.
std::string obstacle(veldra::Library::Recognition::Kind kind) {
  using Kind = veldra::Library::Recognition::Kind;
  switch (kind) {
    case Kind::WithoutVersion:
      return "It does not say its version any more";
    case Kind::UnknownVersion:
      return "What it says of its version means nothing, or is there twice";
    case Kind::WithoutIdentity:
      return "It does not say any more what library it is: \"Meta\" is no table or has no row";
    default:
      return "";
  }
}

std::vector<Finding> all_findings(const std::string& file) {
  const auto sentence = obstacle(recognised(file));
  if (sentence.empty()) return reading(file, findings_in);
  return {{"file", sentence + ", so that it is not opened as a library"}};
}

void check(const Arguments& arguments, Host& host) {
  const auto findings = all_findings(arguments.file);
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
