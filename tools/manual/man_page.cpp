// SPDX-License-Identifier: GPL-2.0-or-later
#include "pages.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace veldra_manual {

namespace {

/// A text for troff, which takes some characters for commands and hyphens for what may be broken.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const bool at_line_start = result.empty() || result.back() == '\n';
    if (at_line_start && (c == '.' || c == '\'')) result += "\\&";
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else if (c == '\'') {
      result += "\\(aq";
    } else {
      result += c;
    }
  }
  return result;
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

std::string head(const Description& program, const std::string& name, const std::string& summary) {
  return fmt::format(".TH {} 1 \"\" \"{} {}\" \"User Commands\"\n.SH NAME\n{} \\- {}\n",
                     upper(escaped(name)), program.name, program.version, escaped(name),
                     escaped(summary));
}

std::string names_with_value(const Argument& argument) {
  std::string names;
  for (const auto& name : argument.names) {
    if (!names.empty()) names += ", ";
    names += "\\fB" + escaped(name) + "\\fR";
    if (!argument.value.empty()) names += " \\fI" + escaped(argument.value) + "\\fR";
  }
  return names;
}

std::string arguments_section(const std::string& title, const std::vector<Argument>& arguments,
                              bool options) {
  std::string text;
  for (const auto& argument : arguments) {
    if (argument.is_option() != options) continue;
    text += fmt::format(".TP\n{}\n{}\n", names_with_value(argument), escaped(argument.text));
  }
  return text.empty() ? "" : ".SH " + title + "\n" + text;
}

std::string statuses_section(const Description& program, const std::string& more) {
  std::string text = ".SH EXIT STATUS\n";
  for (const auto& [number, meaning] : program.statuses) {
    text += fmt::format(".TP\n.B {}\n{}\n", number, escaped(meaning));
  }
  return more.empty() ? text : text + ".PP\n" + escaped(more) + "\n";
}

}  // namespace

std::string man_page(const Description& program) {
  std::string text = head(program, program.name, program.summary);
  text += fmt::format(".SH SYNOPSIS\n.B {}\n.I COMMAND\n[\\fIARGUMENTS\\fR]\n", program.name);
  text += ".SH COMMANDS\n";
  for (const auto& command : program.commands) {
    text += fmt::format(".TP\n\\fB{0}\\-{1}\\fR(1)\n{2}\n", program.name, escaped(command.name),
                        escaped(command.summary));
  }
  text += arguments_section("OPTIONS", program.options, true);
  text += statuses_section(program, "");
  for (const auto& [title, note] : program.notes) {
    text += fmt::format(".SH {}\n{}\n", upper(title), escaped(note));
  }
  return text;
}

std::string man_page(const Description& program, const Command& command) {
  std::string text = head(program, program.name + "-" + command.name, command.summary);
  text += fmt::format(".SH SYNOPSIS\n.B {}\n", escaped(synopsis(program, command)));
  text += arguments_section("ARGUMENTS", command.arguments, false);
  text += arguments_section("OPTIONS", command.arguments, true);
  if (!command.example.empty()) {
    text += fmt::format(".SH EXAMPLE\n.nf\n{}\n.fi\n", escaped(command.example));
  }
  text += statuses_section(program, command.status);
  return text + fmt::format(".SH SEE ALSO\n.BR {} (1)\n", program.name);
}

}  // namespace veldra_manual
