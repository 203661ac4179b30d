// SPDX-License-Identifier: GPL-2.0-or-later
#include "assignments.hpp"

#include <CLI/CLI.hpp>

namespace veldra_tool {

namespace {

[[noreturn]] void refuse(const std::string& text, const std::string& option) {
  throw CLI::ValidationError(
      option, fmt::format("{} is not FIELD=VALUE, such as manufacturer=Smith", in_quotes(text)));
}

Assignment assignment_in(const std::string& text, const std::string& option) {
  const bool is_quoted = !text.empty() && text.front() == '`';
  const auto name = is_quoted ? 1U : 0U;
  const auto end = text.find(is_quoted ? "`=" : "=", name);
  if (end == std::string::npos || end == name) refuse(text, option);
  return {text.substr(name, end - name), text.substr(end + name + 1)};
}

}  // namespace

std::vector<Assignment> assignments_in(const std::vector<std::string>& texts,
                                       const std::string& option) {
  std::vector<Assignment> assignments;
  assignments.reserve(texts.size());
  for (const auto& text : texts) assignments.push_back(assignment_in(text, option));
  return assignments;
}

void add_properties(CLI::App& command, std::vector<std::string>& properties) {
  command
      .add_option("--property", properties,
                  "Set a custom property, as NAME=VALUE, and make it where it is not there; may be "
                  "given several times")
      ->allow_extra_args(false)
      ->type_name("NAME=VALUE");
}

}  // namespace veldra_tool
