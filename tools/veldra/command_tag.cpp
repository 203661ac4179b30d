// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "edit_commands.hpp"
#include "editing.hpp"
#include "host.hpp"
#include "object_arguments.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::vector<std::string> texts;
  std::vector<std::string> tags;
  Selection selection;
  PlanArguments plan;
};

using Names = kit::Value::Texts;

bool has(const Names& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// Those that are there keep their order.
Names with_tags(Names names, const Names& added) {
  for (const auto& tag : added) {
    if (!has(names, tag)) names.push_back(tag);
  }
  return names;
}

Names without_tags(Names names, const Names& removed) {
  names.erase(std::remove_if(names.begin(), names.end(),
                             [&](const auto& name) { return has(removed, name); }),
              names.end());
  return names;
}

/// Which tags an object is to have of those that it has.
using NewTags = Names (*)(Names, const Names&);

/// An object of which nothing changes keeps its list, in which a tag may stand twice.
template <class T>
void change_tags(T& object, const Names& tags, NewTags new_tags) {
  if constexpr (is_built<T>) {
    const auto& field = kit::built_in_fields<T>().at("tags");
    const auto before = field.get(object).template as<Names>();
    const auto after = new_tags(before, tags);
    if (after != before) field.set(object, after);
  } else {
    throw LibraryFailure("only materials and compositions have tags");
  }
}

void require_tag(const veldra::Library& library, const std::string& name) {
  if (!objects_named<veldra::Tag>(library, name).empty()) return;
  throw LibraryFailure(fmt::format("there is no tag {} in the library{}", in_quotes(name),
                                   suggested_names<veldra::Tag>(library, name)));
}

void change_tags(Arguments& arguments, NewTags new_tags, Host& host) {
  take_selection(arguments.texts, arguments.selection);
  if (!arguments.texts.empty()) named_object(arguments.texts.front());
  edit_library(arguments.file, arguments.plan, host, [&](Editing& editing) {
    if (new_tags == without_tags) {
      for (const auto& tag : arguments.tags) {
        require_tag(editing.library(), tag);
      }
    }
    editing.change_each(keys_of(editing.library(), arguments.selection), [&](auto) {
      return [&](auto& object) { change_tags(object, arguments.tags, new_tags); };
    });
    return editing.carry_out();
  });
}

void add_arguments(CLI::App& command, const std::string& tag_help, NewTags new_tags, Host& host) {
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command
      .add_option(
          "ARGUMENT", arguments->texts,
          fmt::format("The materials and compositions, {}; or KIND with --where", objects_help()))
      ->required()
      ->type_name("");
  add_tags(command, arguments->tags, tag_help);
  command.get_option("--tag")->required();
  const auto* where = add_selection(command, arguments->selection);
  add_backup(command, host);
  add_plan_arguments(command, arguments->plan);
  command.callback([arguments, where, new_tags, &host] {
    arguments->selection.filtered = where->count() > 0;
    change_tags(*arguments, new_tags, host);
  });
}

}  // namespace

void add_tag(Host& host) {
  auto& command = *host.arguments.add_subcommand("tag", "Give materials and compositions tags");
  add_arguments(command, "The tag, which is made where it is not there; may be given several times",
                with_tags, host);
  add_example(command, "veldra tag office.lib compositions --where 'U < 0.2' --tag 'low energy'");
}

void add_untag(Host& host) {
  auto& command =
      *host.arguments.add_subcommand("untag", "Take tags from materials and compositions");
  add_arguments(command, "The tag; may be given several times", without_tags, host);
  add_example(command, "veldra untag office.lib composition:Roof material:Slate --tag draft");
}

}  // namespace veldra_tool
