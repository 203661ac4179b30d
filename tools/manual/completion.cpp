// SPDX-License-Identifier: GPL-2.0-or-later
#include "pages.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace veldra_manual {

namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string command_names(const Description& program) {
  std::vector<std::string> names;
  for (const auto& command : program.commands) names.push_back(command.name);
  return joined(names);
}

std::string option_names(const Command& command) {
  std::vector<std::string> names;
  for (const auto& argument : command.arguments) {
    if (!argument.is_option()) continue;
    names.insert(names.end(), argument.names.begin(), argument.names.end());
  }
  return joined(names);
}

/// A text in single quotes, as all three shells read it; `quote` is how one stands in it.
std::string in_quotes(const std::string& text, const std::string& quote) {
  std::string result;
  for (const char c : text) result += c == '\'' ? quote : std::string(1, c);
  return "'" + result + "'";
}

std::vector<const Argument*> places_of(const Command& command) {
  std::vector<const Argument*> places;
  for (const auto& argument : command.arguments) {
    if (!argument.is_option()) places.push_back(&argument);
  }
  return places;
}

// bash

std::string words_after_options(const Command& command) {
  std::string cases;
  for (const auto& argument : command.arguments) {
    if (!argument.is_option() || argument.value.empty()) continue;
    std::string pattern;
    for (const auto& name : argument.names) pattern += (pattern.empty() ? "" : "|") + name;
    const std::string words =
        argument.choices.empty()
            ? "COMPREPLY=($(compgen -f -- \"$word\"))"
            : fmt::format("COMPREPLY=($(compgen -W '{}' -- \"$word\"))", joined(argument.choices));
    cases += fmt::format("        {}) {}; return ;;\n", pattern, words);
  }
  return cases;
}

std::string words_at_places(const Command& command) {
  std::string cases;
  const auto places = places_of(command);
  for (std::size_t i = 0; i != places.size(); ++i) {
    if (places[i]->choices.empty()) continue;
    const std::string pattern = places[i]->is_repeated ? "*" : std::to_string(i + 1);
    cases += fmt::format("        {}) COMPREPLY=($(compgen -W '{}' -- \"$word\")); return ;;\n",
                         pattern == "*" && i > 0 ? fmt::format("[{}-9]*", i + 1) : pattern,
                         joined(places[i]->choices));
  }
  return cases;
}

std::string bash_case(const Command& command) {
  std::string text = fmt::format("    {})\n", command.name);
  const std::string options = words_after_options(command);
  if (!options.empty()) text += "      case $before in\n" + options + "      esac\n";
  text += fmt::format(
      "      if [[ $word == -* ]]; then\n"
      "        COMPREPLY=($(compgen -W '{}' -- \"$word\")); return\n      fi\n",
      option_names(command));
  const std::string places = words_at_places(command);
  if (!places.empty()) text += "      case $place in\n" + places + "      esac\n";
  return text + "      ;;\n";
}

// zsh

std::string zsh_quotes(const std::string& text) { return in_quotes(text, "'\\''"); }

/// What zsh takes for the end of a part of an entry.
std::string zsh_text(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') result += '\\';
    result += c;
  }
  return result;
}

std::string zsh_values(const Argument& argument) {
  return argument.choices.empty() ? "_files" : "(" + joined(argument.choices) + ")";
}

std::string zsh_place(const Argument& argument) {
  return zsh_quotes(fmt::format("{}:{}:{}", argument.is_repeated ? "*" : "", argument.names.front(),
                                zsh_values(argument)));
}

/// The names of an option, one of which stands for all: "'(-o --output)'{-o,--output}".
std::string zsh_names(const Argument& argument) {
  if (argument.names.size() == 1) return argument.names.front();
  std::string names;
  for (const auto& name : argument.names) names += (names.empty() ? "" : ",") + name;
  const std::string others =
      argument.is_repeated ? "" : zsh_quotes("(" + joined(argument.names) + ")");
  return others + "{" + names + "}";
}

std::string zsh_option(const Argument& argument) {
  std::string text = "[" + zsh_text(argument.text) + "]";
  if (!argument.value.empty()) text += ":" + argument.value + ":" + zsh_values(argument);
  return (argument.is_repeated ? "'*'" : "") + zsh_names(argument) + zsh_quotes(text);
}

std::string zsh_entry(const Argument& argument) {
  return argument.is_option() ? zsh_option(argument) : zsh_place(argument);
}

// fish

std::string fish_line(const Description& program, const std::string& condition,
                      const std::string& what, const std::string& text) {
  return fmt::format("complete -c {} -n {} {} -d {}\n", program.name, in_quotes(condition, "\\'"),
                     what, in_quotes(text, "\\'"));
}

std::string fish_option(const Argument& argument) {
  std::string what;
  for (const auto& name : argument.names) {
    what += name.compare(0, 2, "--") == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (argument.value.empty()) return what.substr(1);
  what += " -r";
  if (!argument.choices.empty()) what += " -f -a " + in_quotes(joined(argument.choices), "\\'");
  return what.substr(1);
}

}  // namespace

std::string bash_completion(const Description& program) {
  std::string text = fmt::format(
      "# Completion of {0} in bash.\n"
      "_{0}() {{\n"
      "  local word=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD - 1]}}\n"
      "  local command=${{COMP_WORDS[1]}} place=0 i\n"
      "  COMPREPLY=()\n"
      "  if ((COMP_CWORD == 1)); then\n"
      "    COMPREPLY=($(compgen -W '{1} --help --version' -- \"$word\")); return\n  fi\n"
      "  for ((i = 2; i <= COMP_CWORD; ++i)); do\n"
      "    [[ ${{COMP_WORDS[i]}} == -* ]] || place=$((place + 1))\n"
      "  done\n"
      "  case $command in\n",
      program.name, command_names(program));
  for (const auto& command : program.commands) text += bash_case(command);
  return text + fmt::format(
                    "  esac\n  COMPREPLY=($(compgen -f -- \"$word\"))\n}}\n"
                    "complete -o filenames -F _{0} {0}\n",
                    program.name);
}

std::string zsh_completion(const Description& program) {
  std::string text = fmt::format(
      "#compdef {0}\n# Completion of {0} in zsh.\n"
      "local -a commands=(\n",
      program.name);
  for (const auto& command : program.commands) {
    text += fmt::format("  {}\n", zsh_quotes(command.name + ":" + zsh_text(command.summary)));
  }
  text += fmt::format(
      ")\nif ((CURRENT == 2)); then\n  _describe 'command' commands\n  return\nfi\n"
      "local command=$words[2]\nshift words\n((CURRENT -= 1))\ncase $command in\n");
  for (const auto& command : program.commands) {
    text += fmt::format("  {})\n    _arguments", command.name);
    for (const auto& argument : command.arguments) {
      text += " \\\n      " + zsh_entry(argument);
    }
    text += "\n    ;;\n";
  }
  return text + "esac\n";
}

std::string fish_completion(const Description& program) {
  std::string text = fmt::format("# Completion of {} in fish.\n", program.name);
  for (const auto& command : program.commands) {
    text += fish_line(program, "__fish_use_subcommand", "-f -a " + command.name, command.summary);
  }
  for (const auto& command : program.commands) {
    const std::string condition = "__fish_seen_subcommand_from " + command.name;
    for (const auto& argument : command.arguments) {
      if (argument.is_option()) {
        text += fish_line(program, condition, fish_option(argument), argument.text);
      } else if (!argument.choices.empty()) {
        text += fish_line(program, condition, "-a " + in_quotes(joined(argument.choices), "\\'"),
                          argument.names.front());
      }
    }
  }
  return text;
}

}  // namespace veldra_manual
