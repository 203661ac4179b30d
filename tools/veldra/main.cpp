#include "failure.hpp"
#include "host.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <cstdio>

namespace veldra_tool {

Host::Host() : arguments("Catalogues of building materials and build-ups in library files") {
  arguments.name("veldra");
  arguments.require_subcommand(1);
  arguments.footer("'veldra COMMAND --help' tells more about a command.");
  for (const auto add : {add_create, add_info, add_list, add_show, add_where_used, add_import,
                         add_export, add_copy, add_remove, add_purge, add_draw, add_check})
    add(*this);
}

namespace {

constexpr int failed = 1;
constexpr int wrong_arguments = 2;

int complain(const std::string& sentence) {
  fmt::print(stderr, "veldra: {}\n", sentence);
  return failed;
}

int run(Host& host, int count, char** values) {
  try {
    host.arguments.parse(count, values);
  } catch (const CLI::ParseError& error) {
    return host.arguments.exit(error) == 0 ? 0 : wrong_arguments;
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
