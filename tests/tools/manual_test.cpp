// SPDX-License-Identifier: GPL-2.0-or-later
#include "host.hpp"
#include "pages.hpp"
#include "tools/program.hpp"

#include <veldra/veldra.hpp>

#include <sstream>
#include <stdexcept>

namespace veldra_tests {
namespace {

class Help : public ProgramTest {
 protected:
  const veldra_tool::Host host;
};

TEST_F(Help, of_a_command_is_what_the_command_says_itself) {
  for (const char* command : {"create", "import", "where-used", "help"}) {
    EXPECT_EQ(must({"help", command}).out, must({command, "--help"}).out) << command;
  }
  EXPECT_EQ(must({"help"}).out, must({"--help"}).out);
}

TEST_F(Help, says_in_words_what_does_not_go_together) {
  const auto help = must({"help", "import"}).out;
  EXPECT_THAT(help, AllOf(HasSubstr("--plan FILE (not with --dry-run)"),
                          HasSubstr("--force (with --plan)")));
  for (const auto* command : host.arguments.get_subcommands({})) {
    EXPECT_THAT(must({"help", command->get_name()}).out,
                Not(testing::AnyOf(HasSubstr("Excludes:"), HasSubstr("Needs:"))));
  }
  const auto run = veldra({"import", "a.lib", "a.json", "--plan", "p", "--dry-run"});
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, HasSubstr("veldra: --dry-run and --plan do not go together\n"));
}

/// Later releases of the library that reads them refuse other names, all of the program with them.
TEST_F(Help, calls_arguments_by_one_word) {
  for (const auto* command : host.arguments.get_subcommands({})) {
    for (const auto* argument : command->get_options()) {
      const auto name = argument->get_name(true);
      EXPECT_EQ(name.find_first_of("=:{ "), std::string::npos)
          << command->get_name() << " " << name;
    }
  }
}

TEST_F(Help, of_no_command_is_wrong_use) {
  const auto run = veldra({"help", "destroy"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("there is no command 'destroy'"));
}

TEST_F(Help, the_release_is_that_of_the_library) {
  EXPECT_EQ(must({"--version"}).out, std::string("veldra ") + veldra::version_text() + " (SQLite " +
                                         veldra::sqlite_version_text() + ")\n");
}

class Manual : public ProgramTest {
 protected:
  const veldra_manual::Command& command(const std::string& name) const {
    for (const auto& each : program.commands) {
      if (each.name == name) return each;
    }
    throw std::runtime_error("no command " + name);
  }

  /// The words that bash offers for the last of some words.
  std::vector<std::string> offered(const std::string& words, int last) {
    write("completion", veldra_manual::bash_completion(program));
    write("try", "source ./completion; COMP_WORDS=(" + words + "); COMP_CWORD=" +
                     std::to_string(last) + "; _veldra; printf '%s\\n' \"${COMPREPLY[@]}\"");
    const Outcome run = shell("bash try");
    EXPECT_EQ(run.err, "");
    std::istringstream lines(run.out);
    std::vector<std::string> found;
    for (std::string line; std::getline(lines, line);) {
      if (!line.empty()) found.push_back(line);
    }
    return found;
  }

  const veldra_tool::Host host;
  const veldra_manual::Description program = veldra_manual::describe(host.arguments, "1.2.3");
};

TEST_F(Manual, knows_all_commands_and_what_they_take) {
  EXPECT_THAT(program.commands, SizeIs(host.arguments.get_subcommands({}).size()));
  for (const auto& each : program.commands) {
    EXPECT_NE(each.summary, "") << each.name;
    EXPECT_NE(each.example, "") << each.name;
    for (const auto& argument : each.arguments) EXPECT_NE(argument.text, "") << each.name;
  }
  EXPECT_THAT(program.statuses, SizeIs(4));
  EXPECT_EQ(program.statuses[0].second, "done");
}

TEST_F(Manual, knows_the_words_that_an_argument_may_be) {
  const auto& list = command("list");
  ASSERT_EQ(list.arguments[1].names, std::vector<std::string>{"KIND"});
  EXPECT_THAT(list.arguments[1].choices, IsSupersetOf({"materials", "compositions"}));
  EXPECT_THAT(list.arguments[0].choices, IsEmpty());
}

TEST_F(Manual, the_synopsis_tells_what_is_required_and_what_is_repeated) {
  EXPECT_EQ(synopsis(program, command("show")), "veldra show [OPTIONS] FILE KIND [OBJECT...]");
  EXPECT_EQ(synopsis(program, command("import")), "veldra import [OPTIONS] FILE SOURCE...");
  EXPECT_EQ(synopsis(program, command("purge")), "veldra purge [OPTIONS] FILE [KIND...]");
}

TEST_F(Manual, each_man_page_has_all_that_the_help_has) {
  for (const auto& each : program.commands) {
    const std::string page = veldra_manual::man_page(program, each);
    for (const auto& argument : each.arguments) {
      for (const auto& name : argument.names) {
        std::string in_page;
        for (const char c : name) in_page += c == '-' ? "\\-" : std::string(1, c);
        EXPECT_THAT(page, HasSubstr("\\fB" + in_page + "\\fR")) << each.name;
      }
    }
    EXPECT_THAT(page, HasSubstr(".SH EXIT STATUS")) << each.name;
  }
}

TEST_F(Manual, the_page_of_the_program_tells_of_its_configuration_and_its_language) {
  const std::string man = veldra_manual::man_page(program);
  EXPECT_THAT(man, HasSubstr(".SH CONFIGURATION\nThe file veldra/config in $XDG_CONFIG_HOME"));
  EXPECT_THAT(man, HasSubstr(".SH LANGUAGE\nAll texts are English, and numbers have a point"));
  const std::string page = veldra_manual::markdown_page(program);
  EXPECT_THAT(page, HasSubstr("\n## Configuration\n\nThe file veldra/config"));
  EXPECT_THAT(page, HasSubstr("\n## Language\n\nAll texts are English"));
}

TEST_F(Manual, a_line_that_begins_like_a_request_is_text) {
  veldra_manual::Command strange{"x", "is \\ strange", {}, ".SH it's - here", ""};
  EXPECT_THAT(veldra_manual::man_page(program, strange), HasSubstr("\n\\&.SH it\\(aqs \\- here\n"));
  EXPECT_THAT(veldra_manual::man_page(program, strange), HasSubstr("is \\e strange"));
}

TEST_F(Manual, bash_completes_commands_kinds_and_values) {
  EXPECT_THAT(offered("veldra im", 1), ElementsAre("import"));
  EXPECT_THAT(offered("veldra list a.lib comp", 3), ElementsAre("compositions"));
  EXPECT_THAT(offered("veldra create a.lib --unit ''", 4), ElementsAre("mm", "in"));
  EXPECT_THAT(offered("veldra import a.lib x.idf --on-conflict re", 5), ElementsAre("rename"));
  EXPECT_THAT(offered("veldra list --js", 2), ElementsAre("--json"));
  EXPECT_THAT(offered("veldra purge a.lib tags mat", 4), Contains("materials"));
  EXPECT_THAT(offered("veldra help ch", 2), ElementsAre("check"));
}

TEST_F(Manual, bash_completes_files_elsewhere) {
  write("office.lib", "");
  EXPECT_THAT(offered("veldra info off", 2), ElementsAre("office.lib"));
  EXPECT_THAT(offered("veldra export a.lib -o off", 4), ElementsAre("office.lib"));
}

TEST_F(Manual, the_other_shells_know_every_command_and_option) {
  const std::string zsh = veldra_manual::zsh_completion(program);
  const std::string fish = veldra_manual::fish_completion(program);
  for (const auto& each : program.commands) {
    EXPECT_THAT(zsh, HasSubstr("\n  " + each.name + ")\n")) << each.name;
    EXPECT_THAT(fish, HasSubstr("-a " + each.name + " ")) << each.name;
    for (const auto& argument : each.arguments) {
      if (!argument.is_option()) continue;
      for (const auto& name : argument.names) {
        EXPECT_THAT(zsh, ContainsRegex(name + "[,}']")) << each.name;
      }
      EXPECT_THAT(fish, HasSubstr("-l " + argument.names.back().substr(2))) << each.name;
    }
  }
}

TEST_F(Manual, bash_offers_all_names_of_an_option) {
  EXPECT_THAT(offered("veldra export -", 2), IsSupersetOf({"-o", "--output", "-h", "--help"}));
}

TEST_F(Manual, zsh_offers_all_names_of_an_option_until_one_is_given) {
  const std::string zsh = veldra_manual::zsh_completion(program);
  EXPECT_THAT(zsh, HasSubstr("\n      '(-o --output)'{-o,--output}'["));
  EXPECT_THAT(zsh, HasSubstr("\n      '(-h --help)'{-h,--help}'["));
  EXPECT_THAT(zsh, HasSubstr("\n      --json'["));
}

TEST_F(Manual, zsh_offers_again_what_may_be_repeated) {
  veldra_manual::Argument several{{"-x", "--extra"}, "NAME", "it's [one]", {}, false, true};
  const veldra_manual::Description strange{"x", "1", "", {}, {{"do", "does", {several}, "", ""}},
                                           {}};
  EXPECT_THAT(veldra_manual::zsh_completion(strange),
              HasSubstr("'*'{-x,--extra}'[it'\\''s \\[one\\]]:NAME:_files'"));
}

TEST_F(Manual, fish_knows_all_names_of_an_option) {
  EXPECT_THAT(veldra_manual::fish_completion(program), HasSubstr(" -s o -l output -r "));
}

TEST_F(Manual, the_first_page_of_the_site_leads_to_all_others) {
  const std::string page = veldra_manual::markdown_page(program);
  for (const auto& each : program.commands) {
    EXPECT_THAT(page, HasSubstr("[" + each.name + "](" + each.name + ".md)"));
  }
}

TEST_F(Manual, each_page_of_the_site_has_all_that_the_help_has) {
  for (const auto& each : program.commands) {
    const std::string page = veldra_manual::markdown_page(program, each);
    for (const auto& argument : each.arguments) {
      EXPECT_THAT(page, HasSubstr(argument.text)) << each.name;
    }
    EXPECT_THAT(page, HasSubstr("```text\n" + each.example + "\n```")) << each.name;
  }
}

}  // namespace
}  // namespace veldra_tests
