// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "json.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "progress.hpp"
#include "summary.hpp"
#include "table.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  veldra::ObjectType kind{};
  std::vector<std::string> tags;
  std::string type;
  std::string pattern;
  bool by_pattern = false;
  bool json = false;
};

std::set<veldra::String> tag_names(const Arguments& arguments) {
  std::set<veldra::String> names;
  for (const auto& tag : arguments.tags) names.insert(library_text(tag));
  return names;
}

void set_criteria(veldra::MaterialCriteria& criteria, const Arguments& arguments,
                  const veldra::Library& library) {
  criteria.tags = tag_names(arguments);
  if (!arguments.type.empty()) {
    criteria.type = find_object<veldra::MaterialType>(library, arguments.type);
  }
}

void set_criteria(veldra::CompositionCriteria& criteria, const Arguments& arguments,
                  const veldra::Library&) {
  criteria.tags = tag_names(arguments);
  if (!arguments.type.empty()) {
    criteria.types = static_cast<unsigned>(composition_type(arguments.type));
  }
}

void set_criteria(veldra::CustomPropertyCriteria& criteria, const Arguments& arguments,
                  const veldra::Library&) {
  if (arguments.type.empty()) return;
  const auto kind = kinds_by_name().find(arguments.type);
  if (kind == kinds_by_name().end()) {
    throw Failure(fmt::format("there are no properties for {}", in_quotes(arguments.type)));
  }
  criteria.object_type = kind->second;
}

template <class Criteria>
void set_criteria(Criteria&, const Arguments&, const veldra::Library&) {}

/// What makes no sense for a kind is a wrong argument.
void require_sense(const Arguments& arguments) {
  const bool tagged = arguments.kind == veldra::ObjectType::Material ||
                      arguments.kind == veldra::ObjectType::Composition;
  if (!arguments.tags.empty() && !tagged) {
    throw CLI::ValidationError("--tag", "only materials and compositions have tags");
  }
  const bool typed = tagged || arguments.kind == veldra::ObjectType::CustomProperty;
  if (!arguments.type.empty() && !typed) {
    throw CLI::ValidationError("--type", "only materials, compositions and properties have types");
  }
}

template <class T>
std::vector<std::shared_ptr<T>> found(const veldra::Library& library, const Arguments& arguments) {
  typename veldra::CriteriaOf<T>::type criteria;
  set_criteria(criteria, arguments, library);
  std::vector<std::shared_ptr<T>> objects;
  if (arguments.by_pattern) {
    library.search(objects, library_text(arguments.pattern), criteria);
  } else {
    library.get(objects, criteria);
  }
  sort_by_name(objects);
  return objects;
}

template <class T>
Json json_of(const veldra::Library& library, const Arguments& arguments) {
  Progress progress("listing");
  Json list = Json::array();
  for (const auto& object : found<T>(library, arguments)) {
    list.push_back(summary_of(*object));
    progress.step();
  }
  return list;
}

template <class T>
Table table_of(const veldra::Library& library, const Arguments& arguments) {
  Progress progress("listing");
  Table table(summary_columns<T>(library.unit()));
  for (const auto& object : found<T>(library, arguments)) {
    table.add(summary_cells(*object, library.unit()));
    progress.step();
  }
  return table;
}

void list(const Arguments& arguments, Host& host) {
  require_sense(arguments);
  reading(arguments.file, [&](const veldra::Library& library) {
    with_class_of(arguments.kind, [&](auto of) {
      using T = typename decltype(of)::type;
      if (arguments.json) return print_json(host.output, json_of<T>(library, arguments));
      host.output.write(table_of<T>(library, arguments).text());
    });
  });
}

}  // namespace

void add_list(Host& host) {
  auto& command = *host.arguments.add_subcommand("list", "List the objects of a kind");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_kind(command, arguments->kind);
  add_tags(command, arguments->tags,
           "Only materials or compositions with this tag; given several times, with one of them");
  command.add_option(
      "--type", arguments->type,
      fmt::format("Only materials of this type, {}; compositions: wall, floor, roof, "
                  "other; properties: material, composition",
                  naming_help));
  auto* search = command.add_option(
      "--search", arguments->pattern,
      "Only names like this: % stands for any text, _ for one character; A and a are alike");
  add_json(command, arguments->json);
  add_example(command, "veldra list office.lib materials --type Wood --search '%oak%'");
  command.callback([arguments, search, &host] {
    arguments->by_pattern = search->count() > 0;
    list(*arguments, host);
  });
}

}  // namespace veldra_tool
