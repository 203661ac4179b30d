// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "json.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "object_arguments.hpp"
#include "opening.hpp"
#include "references.hpp"
#include "table.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  ObjectsOfKind object;
  bool json = false;
};

void print(Spool& output, const std::vector<Reference>& references, bool json) {
  if (json) {
    return print_json_list(output, references, [](const Reference& reference) {
      Json entry = key_to_json(reference.from, reference.name);
      entry["as"] = reference.role;
      return entry;
    });
  }
  Table table = object_table("as");
  for (const auto& reference : references) {
    table.add({singular_of(reference.from.type), fmt::format("{}", reference.from.id),
               reference.name, reference.role});
  }
  print_table(output, table, "Nothing refers to it.");
}

void where_used(const Arguments& arguments, Host& host) {
  const auto wanted = arguments.object.single();
  reading(arguments.file, [&](const veldra::Library& library) {
    const auto key = object_key(library, wanted.kind, wanted.object);
    print(host.output, references_to(library, key), arguments.json);
  });
}

}  // namespace

void add_where_used(Host& host) {
  auto& command =
      *host.arguments.add_subcommand("where-used", "List the objects that refer to one");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_objects_of_kind(command, arguments->object, "The object");
  add_json(command, arguments->json);
  add_example(command, "veldra where-used office.lib material 'Solid brick'");
  command.callback([arguments, &host] { where_used(*arguments, host); });
}

}  // namespace veldra_tool
