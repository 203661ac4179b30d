// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "assignments.hpp"
#include "edit_commands.hpp"
#include "editing.hpp"
#include "host.hpp"
#include "object_arguments.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  ObjectsOfKind object;
  std::vector<std::string> names;  ///< what stands behind the kind, the new name at the end
  std::string name;
  PlanArguments plan;
};

/// An object under a name that it is to have. What stands under its id only, the code, stays with
/// the first one.
template <class T>
std::shared_ptr<T> duplicate_of(const T& object, const std::string& name) {
  const auto duplicate = object.clone();
  kit::built_in_fields<T>().at("name").set(*duplicate, name);
  if constexpr (std::is_same_v<T, veldra::Material>) duplicate->clear_code();
  return duplicate;
}

kit::PlanEntry addition_of(const veldra::ObjectKey& key, const std::string& name) {
  kit::PlanEntry entry{};
  entry.source = key;
  entry.name = name;
  entry.result = name;
  entry.stored = key.id;
  entry.decision = kit::Decision::Add;
  return entry;
}

/// Saved into the library at once, where it keeps the assets.
template <class T>
void duplicate(Editing& editing, const Arguments& arguments, const std::string& object) {
  if constexpr (is_built<T>) {
    auto& library = editing.library();
    const auto copy = duplicate_of(*find_object<T>(library, object), arguments.name);
    require_free_name(library, *copy, 0);
    library.save(copy);
    editing.note(addition_of({veldra::ObjectTraits<T>::type, copy->id()}, arguments.name));
  } else {
    throw LibraryFailure("only materials and compositions can be duplicated");
  }
}

/// A tag is its name.
[[noreturn]] void refuse_tag(const std::string& tag, const std::string& name) {
  throw LibraryFailure(fmt::format(
      "a tag keeps its name; 'veldra tag' gives {} to the objects that have {}, by --where \"tag = "
      "...\", 'veldra untag' takes the old one from them, and 'veldra remove' removes it",
      in_quotes(name), in_quotes(tag)));
}

void rename(const Arguments& arguments, Host& host) {
  const auto wanted = arguments.object.single();
  const Assigned assigned{{{"name", arguments.name}}, {}};
  edit_library(arguments.file, arguments.plan, host, [&](Editing& editing) {
    const auto keys = keys_of(editing.library(), {wanted});
    if (wanted.kind == veldra::ObjectType::Tag) refuse_tag(wanted.object, arguments.name);
    editing.change_each(keys, [&](auto of) {
      return Setter<typename decltype(of)::type>(editing.library(), assigned, 1);
    });
    return editing.carry_out();
  });
}

void duplicate(const Arguments& arguments, Host& host) {
  const auto wanted = arguments.object.single();
  edit_library(arguments.file, arguments.plan, host, [&](Editing& editing) {
    with_class_of(wanted.kind, [&](auto of) {
      duplicate<typename decltype(of)::type>(editing, arguments, wanted.object);
    });
    return editing.carry_out();
  });
}

using Run = void (*)(const Arguments&, Host&);

void add_arguments(CLI::App& command, const std::string& name_help, Run run, Host& host) {
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_kind_of_object(command, arguments->object.kind);
  command
      .add_option("NAME", arguments->names,
                  fmt::format("The object where KIND does not say it, {}; and behind it {}",
                              naming_help, name_help))
      ->required()
      ->type_name("");
  add_backup(command, host);
  add_plan_arguments(command, arguments->plan);
  command.callback([arguments, run, &host] {
    arguments->name = arguments->names.back();
    arguments->names.pop_back();
    arguments->object.objects = arguments->names;
    run(*arguments, host);
  });
}

}  // namespace

void add_rename(Host& host) {
  auto& command = *host.arguments.add_subcommand("rename", "Give an object another name");
  add_arguments(command, "the new name, which no other object of the kind has", rename, host);
  add_example(command, "veldra rename office.lib material:Brick 'Facing brick'");
}

void add_duplicate(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "duplicate", "Make another material or composition with the same values, but for the code");
  add_arguments(command, "the name of the new one, which no other has", duplicate, host);
  add_example(command, "veldra duplicate office.lib 'composition:Cavity wall' 'Cavity wall 2'");
}

}  // namespace veldra_tool
