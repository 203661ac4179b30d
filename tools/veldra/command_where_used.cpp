// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "json.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "references.hpp"
#include "table.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  veldra::ObjectType kind{};
  std::string object;
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
  reading(arguments.file, [&](const veldra::Library& library) {
    const unsigned id = with_class_of(arguments.kind, [&](auto of) {
      return find_object<typename decltype(of)::type>(library, arguments.object)->id();
    });
    print(host.output, references_to(library, veldra::ObjectKey(arguments.kind, id)),
          arguments.json);
  });
}

}  // namespace

void add_where_used(Host& host) {
  auto& command =
      *host.arguments.add_subcommand("where-used", "List the objects that refer to one");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_kind(command, arguments->kind);
  add_object(command, arguments->object);
  add_json(command, arguments->json);
  add_example(command, "veldra where-used office.lib material 'Solid brick'");
  command.callback([arguments, &host] { where_used(*arguments, host); });
}

}  // namespace veldra_tool
