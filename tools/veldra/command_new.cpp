// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "assignments.hpp"
#include "edit_commands.hpp"
#include "editing.hpp"
#include "host.hpp"
#include "object_arguments.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::string kind;  ///< or KIND:NAME
  std::optional<std::string> name;
  std::vector<std::string> texts;
  std::vector<std::string> properties;
  PlanArguments plan;
};

/// Takes from what is to be set for which kind of objects a property is, which never changes later.
veldra::ObjectType take_owner(std::vector<Assignment>& fields) {
  const auto given = std::find_if(fields.begin(), fields.end(), [](const auto& each) {
    return each.field == "for" || each.field == "object_type";
  });
  const auto kind = given == fields.end() ? kinds_by_name().end()
                                          : kinds_by_name().find(kit::lower_case(given->value));
  const bool is_known =
      kind != kinds_by_name().end() && (kind->second == veldra::ObjectType::Material ||
                                        kind->second == veldra::ObjectType::Composition);
  if (!is_known) {
    throw LibraryFailure("a new property needs for=material or for=composition");
  }
  fields.erase(given);
  return kind->second;
}

template <class T>
std::shared_ptr<T> made(const std::string& name, Assigned& assigned) {
  if (name.empty()) throw kit::FieldError("name", name, "it cannot be empty");
  if constexpr (std::is_same_v<T, veldra::CustomProperty>) {
    return T::create(kit::library_text(name), take_owner(assigned.fields));
  } else {
    return T::create(kit::library_text(name));
  }
}

/// What is to be made. Where the kind says the name too, what stands in its place is a value.
NamedObject wanted_object(Arguments& arguments) {
  if (!names_object(arguments.kind)) {
    if (!arguments.name) throw CLI::RequiredError("NAME");
    return {named_object(kit::lower_case(arguments.kind) + ":").kind, *arguments.name};
  }
  if (arguments.name) arguments.texts.insert(arguments.texts.begin(), *arguments.name);
  return named_object(arguments.kind);
}

void make(Arguments& arguments, Host& host) {
  const auto wanted = wanted_object(arguments);
  Assigned assigned{assignments_in(arguments.texts, "FIELD=VALUE"),
                    assignments_in(arguments.properties, "--property")};
  edit_library(arguments.file, arguments.plan, host, [&](Editing& editing) {
    with_class_of(wanted.kind, [&](auto of) {
      using T = typename decltype(of)::type;
      const auto object = made<T>(wanted.object, assigned);
      Setter<T>(editing.library(), assigned, 1)(*object);
      editing.add(object);
    });
    return editing.carry_out();
  });
}

}  // namespace

void add_new(Host& host) {
  auto& command = *host.arguments.add_subcommand("new", "Make an object");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_kind_of_object(command, arguments->kind);
  command
      .add_option("NAME", arguments->name,
                  "Its name, which no other object of the kind has; left out where KIND says it")
      ->type_name("");
  command
      .add_option(
          "ASSIGNMENT", arguments->texts,
          "Its values, each as FIELD=VALUE, such as conductivity=0.04; of a composition also "
          "layers=\"Brick | 115; Wool | 100\", from outside to inside; a property needs "
          "for=material or for=composition")
      ->type_name("");
  add_properties(command, arguments->properties);
  add_backup(command, host);
  add_plan_arguments(command, arguments->plan);
  add_example(command, "veldra new office.lib material Cork conductivity=0.04 density=120");
  command.callback([arguments, &host] { make(*arguments, host); });
}

}  // namespace veldra_tool
