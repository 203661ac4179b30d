#include "failure.hpp"
#include "host.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

namespace veldra_tool {

namespace {

constexpr int failed = 1;
constexpr int wrong_arguments = 2;

int complain(const std::string& sentence) {
  fmt::print(stderr, "veldra: {}\n", sentence);
  return failed;
}

int refuse(const std::string& sentence, const std::string& command) {
  fmt::print(stderr, "veldra: {}\n'{} --help' tells more.\n", printable(sentence), command);
  return wrong_arguments;
}

bool is_command(const Host& host, const std::string& name) {
  const auto commands = host.arguments.get_subcommands({});
  return std::any_of(commands.begin(), commands.end(),
                     [&](const CLI::App* command) { return command->get_name() == name; });
}

/// What the arguments are wrong about, for the command that they begin with.
int refuse(const Host& host, const CLI::ParseError& error) {
  const auto commands = host.arguments.get_subcommands();
  return refuse(error.what(),
                commands.empty() ? "veldra" : "veldra " + commands.front()->get_name());
}

int run(Host& host, int count, char** values) {
  if (count < 2) return refuse("a command is missing", "veldra");
  const std::string first = values[1];
  if (first.compare(0, 1, "-") != 0 && !is_command(host, first)) {
    return refuse(fmt::format("there is no command {}", in_quotes(first)), "veldra");
  }
  try {
    host.arguments.parse(count, values);
  } catch (const CLI::Success& wish) {  // such as help
    return host.arguments.exit(wish);
  } catch (const CLI::ParseError& error) {
    return refuse(host, error);
  } catch (const Failure& failure) {
    return complain(failure.what());
  } catch (const std::exception& error) {
    return complain("something went wrong that was not to be expected");
  }
  if (std::fflush(stdout) != 0) return complain("the output cannot be written");
  return host.status;
}

}  // namespace

}  // namespace veldra_tool

int main(int count, char** values) {
  veldra_tool::use_unicode();
  veldra_tool::Host host;
  return veldra_tool::run(host, count, values);
}
