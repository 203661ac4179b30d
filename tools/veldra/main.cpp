#include "failure.hpp"
#include "host.hpp"
#include "process/writing.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <sstream>

namespace veldra_tool {

namespace {

Status complain(const std::string& sentence) {
  say(fmt::format("veldra: {}\n", sentence));
  return Status::Failed;
}

Status refuse(const std::string& sentence, const std::string& command) {
  say(fmt::format("veldra: {}\n'{} --help' tells more.\n", printable(sentence), command));
  return Status::WrongUse;
}

bool is_command(const Host& host, const std::string& name) {
  const auto commands = host.arguments.get_subcommands({});
  return std::any_of(commands.begin(), commands.end(),
                     [&](const CLI::App* command) { return command->get_name() == name; });
}

/// What the arguments are wrong about, for the command that they begin with.
Status refuse(const Host& host, const CLI::ParseError& error) {
  const auto commands = host.arguments.get_subcommands();
  return refuse(error.what(),
                commands.empty() ? "veldra" : "veldra " + commands.front()->get_name());
}

/// Help, or what else the arguments wish to see in place of a command.
void tell(Host& host, const CLI::Success& wish) {
  std::ostringstream text;
  host.arguments.exit(wish, text, text);
  host.output.write(text.str());
}

/// Tells what the command had to say, now that it holds nothing any more.
Status report(const Host& host) {
  say(host.notes);
  const int error = host.output.copy_to(STDOUT_FILENO);
  if (error == 0) return host.status;
  const std::string reason = text_of_error(error);
  if (!host.done) return complain("standard output cannot be written: " + reason);
  complain("what was asked for is done, but standard output cannot be written: " + reason);
  return Status::Findings;
}

Status run(Host& host, int count, char** values) {
  if (count < 2) return refuse("a command is missing", "veldra");
  const std::string first = values[1];
  if (first.compare(0, 1, "-") != 0 && !is_command(host, first)) {
    return refuse(fmt::format("there is no command {}", in_quotes(first)), "veldra");
  }
  try {
    host.arguments.parse(count, values);
  } catch (const CLI::Success& wish) {  // such as help
    tell(host, wish);
  } catch (const CLI::ParseError& error) {
    return refuse(host, error);
  } catch (const Failure& failure) {
    return complain(failure.what());
  } catch (const std::exception& error) {
    return complain("something went wrong that was not to be expected");
  }
  return report(host);
}

}  // namespace

}  // namespace veldra_tool

int main(int count, char** values) {
  std::signal(SIGPIPE, SIG_IGN);
  veldra_tool::use_unicode();
  veldra_tool::Host host;
  return static_cast<int>(veldra_tool::run(host, count, values));
}
