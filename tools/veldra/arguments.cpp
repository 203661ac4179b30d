// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"

#include "kinds.hpp"

#include "failure.hpp"
#include "files/output_file.hpp"
#include "files/path.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace veldra_tool {

namespace {

/// Turns a name, in whatever case, into the number of its value. `choices` is for the message, and
/// for those who describe the program.
template <class Value>
CLI::Validator named_value(std::map<std::string, Value> values, const std::string& choices) {
  return CLI::Validator(
      [values, choices](std::string& text) {
        std::string name = text;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char letter) { return std::tolower(letter); });
        const auto found = values.find(name);
        if (found == values.end()) {
          return fmt::format("{} is none of {}", in_quotes(text), choices);
        }
        text = fmt::format("{}", static_cast<int>(found->second));
        return std::string();
      },
      "", choices);
}

}  // namespace

std::string sentence_of(const CLI::App& program, const CLI::ParseError& error) {
  const std::string text = error.what();
  const auto before = [&text](const char* part) { return text.substr(0, text.find(part)); };
  const auto says = [&text](const char* part) { return text.find(part) != std::string::npos; };
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    const std::string extra = program.remaining(true).front();
    return extra.front() == '-' ? fmt::format("there is no option {}", in_quotes(extra))
                                : fmt::format("{} is one argument too many", in_quotes(extra));
  }
  if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr) {
    const auto end = text.find(" excludes ");
    return fmt::format("{} and {} do not go together", text.substr(0, end), text.substr(end + 10));
  }
  if (says("A subcommand is required")) return "a command is missing";
  if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) {
    const std::string pair = text.substr(text.find(": ") + 2);
    const auto end = pair.find(" = ");
    if (end == std::string::npos) return text;
    return fmt::format("{}: {} is no number that can be used", pair.substr(0, end),
                       in_quotes(pair.substr(end + 3)));
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) == nullptr) return text;
  if (says(" was given")) return "--" + before(" was given") + ": there is no value for this";
  return before(":") + (says("missing") ? ": the value is missing" : ": this is given twice");
}

void forbid_values_of_flags(CLI::App& command) {
  for (CLI::Option* option : command.get_options()) {
    if (option->get_items_expected_max() == 0) option->disable_flag_override();
  }
}

CLI::Validator some_value() {
  const auto has_text = [](const std::string& text) {
    return std::string(trimmed(text).empty() ? "the value is empty" : "");
  };
  return CLI::Validator(has_text, "");
}

CLI::Validator one_of(std::vector<std::string> words) {
  const auto is_known = [words = std::move(words)](const std::string& text) {
    if (std::find(words.begin(), words.end(), text) != words.end()) return std::string();
    return fmt::format("{} is none of {}", in_quotes(text), fmt::join(words, ", "));
  };
  return CLI::Validator(is_known, "");
}

const char* const naming_help =
    "a name or an id; name:TEXT and id:NUMBER say which, where a number could be both";

std::string kind_choices() {
  std::string choices;
  for (const auto kind : all_kinds()) choices += (choices.empty() ? "" : ", ") + plural_of(kind);
  return choices;
}

void add_file(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, "The library file")->required()->type_name("");
}

void add_kind(CLI::App& command, veldra::ObjectType& kind) {
  command.add_option("KIND", kind, "The kind of objects: " + kind_choices())
      ->required()
      ->transform(named_value(kinds_by_name(), kind_choices()))
      ->type_name("");
}

void add_kinds(CLI::App& command, std::vector<veldra::ObjectType>& kinds) {
  command.add_option("KIND", kinds, "The kinds of objects: " + kind_choices())
      ->transform(named_value(kinds_by_name(), kind_choices()))
      ->type_name("");
}

void add_json(CLI::App& command, bool& json) {
  command.add_flag("--json", json, "Print JSON instead of text");
}

void add_json_of_file(CLI::App& command, bool& json) {
  command.add_flag("--json", json, "Print as JSON what was written to the file");
}

void add_yes(CLI::App& command, bool& yes, const std::string& description) {
  command.add_flag("--yes", yes, description);
}

void add_tags(CLI::App& command, std::vector<std::string>& tags, const std::string& description) {
  command.add_option("--tag", tags, description)->check(some_value())->allow_extra_args(false);
}

void add_output(CLI::App& command, std::string& output, bool& force) {
  command.add_option("-o,--output", output, "The file to write; standard output by default")
      ->check(some_value())
      ->type_name("OUT");
  command.add_flag("--force", force,
                   "Replace OUT where there is a file of that name; a library is never replaced");
}

void add_backup(CLI::App& command, Host& host) {
  const auto go_to_file = [&host](const std::string& file) { host.backup.go_to_file(file); };
  command
      .add_option_function<std::string>(
          "--backup", go_to_file,
          "Write a backup of the library as it was into this new file before it is changed, or "
          "change nothing; 'veldra restore' brings it back")
      ->check(some_value())
      ->type_name("BACKUP");
}

void require_ending(const std::string& output, const std::string& format) {
  const std::string ending = ending_of(output);
  if (is_standard_output(output) || ending.empty() || ending == format) return;
  throw CLI::ValidationError(
      "--output", fmt::format("{} has the ending of another format; what is written is {}",
                              in_quotes(output), format));
}

void add_unit(CLI::App& command, veldra::Unit& unit) {
  const std::map<std::string, veldra::Unit> units{{"mm", veldra::Unit::Millimetres},
                                                  {"in", veldra::Unit::Inches}};
  command.add_option("--unit", unit, "The unit of lengths in a new library: mm (default) or in")
      ->transform(named_value(units, "mm, in"))
      ->type_name("UNIT");
}

void add_example(CLI::App& command, const std::string& example, const std::string& findings) {
  const std::string status = "\n\nThe exit status is 3 when " + findings + ".";
  command.footer("Example:\n  " + example + (findings.empty() ? "" : status));
}

}  // namespace veldra_tool
