// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "files/new_library.hpp"
#include "host.hpp"
#include "json.hpp"
#include "locale.hpp"
#include "opening.hpp"
#include "summary.hpp"
#include "text.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  veldra::Unit unit = veldra::Unit::Millimetres;
  std::string guid;
  std::string locale;
  std::string region;
  bool json = false;
};

void print(Spool& output, const veldra::Library& library, bool json) {
  if (!json) return output.print("{}\n", library.guid().utf8());
  Json facts = facts_of(library);
  facts["read_only"] = false;
  print_json(output, facts);
}

void create(const Arguments& arguments, Host& host) {
  const auto locale = library_text(arguments.locale);
  const auto region = library_text(arguments.region);
  require_place_for_library(arguments.file);
  if (file_exists(arguments.file)) refuse_as_there(arguments.file);
  NewLibrary made(arguments.file, arguments.unit, arguments.guid);
  working_on(arguments.file, [&] {
    if (locale) made.library()->locale(locale);
    if (region) made.library()->region(region);
    print(host.output, *made.library(), arguments.json);
  });
  if (!made.put_into_place(host)) refuse_as_there(arguments.file);
}

}  // namespace

void add_create(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "create", "Make a new library and print its GUID; refuses a file that is there already");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_unit(command, arguments->unit);
  command
      .add_option("--guid", arguments->guid,
                  "The GUID, or a text that it is derived from; random by default")
      ->check(some_value());
  const auto is_known = [](const std::string& locale) {
    if (is_locale(locale)) return std::string();
    return fmt::format(
        "{} is no locale, which is a language with or without a country, such as de "
        "or de_AT",
        in_quotes(locale));
  };
  command.add_option("--locale", arguments->locale, "The locale of the texts, such as de_AT")
      ->check(CLI::Validator(is_known, ""));
  command.add_option("--region", arguments->region, "The region that it is for, such as AT")
      ->check(some_value());
  add_json(command, arguments->json);
  add_example(command, "veldra create office.lib --unit mm --locale de_AT --region AT");
  command.callback([arguments, &host] { create(*arguments, host); });
}

}  // namespace veldra_tool
