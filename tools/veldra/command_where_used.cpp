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

std::string kind_text(veldra::ObjectType kind) {
  return kind == veldra::ObjectType::Asset ? "asset" : singular_of(kind);
}

void print(const std::vector<Reference>& references, bool json) {
  if (json) {
    Json list = Json::array();
    for (const auto& reference : references) {
      Json entry = Json::object();
      entry["kind"] = kind_text(reference.from.type);
      entry["id"] = reference.from.id;
      entry["name"] = reference.name;
      entry["as"] = reference.role;
      list.push_back(entry);
    }
    return print_json(list);
  }
  Table table({{"kind"}, {"id", Align::Right}, {"name"}, {"as"}});
  for (const auto& reference : references) {
    table.add({kind_text(reference.from.type), fmt::format("{}", reference.from.id), reference.name,
               reference.role});
  }
  fmt::print("{}", table.empty() ? "Nothing refers to it.\n" : table.text());
}

void where_used(const Arguments& arguments) {
  const auto library = open_library(arguments.file, Access::Read);
  working_on(arguments.file, [&] {
    const unsigned id = with_class_of(arguments.kind, [&](auto of) {
      return find_object<typename decltype(of)::type>(*library, arguments.object)->id();
    });
    auto references = references_in(*library);
    print(references[veldra::ObjectKey(arguments.kind, id)], arguments.json);
  });
}

}  // namespace

void add_where_used(Host& host) {
  auto& command =
      *host.arguments.add_subcommand("where-used", "List the objects that refer to one");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_kind(command, arguments->kind);
  command.add_option("OBJECT", arguments->object, "The name of the object, or its id")->required();
  add_json(command, arguments->json);
  add_example(command, "veldra where-used office.lib material 'Solid brick'");
  command.callback([arguments] { where_used(*arguments); });
}

}  // namespace veldra_tool
