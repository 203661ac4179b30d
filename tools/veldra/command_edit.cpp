// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "edit_commands.hpp"
#include "edited_objects.hpp"
#include "editing.hpp"
#include "files/destination.hpp"
#include "files/private_file.hpp"
#include "files/reading.hpp"
#include "host.hpp"
#include "object_arguments.hpp"
#include "opening.hpp"
#include "process/editor.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::vector<std::string> texts;
  Selection selection;
  PlanArguments plan;
};

void tell_nothing_changed(const Arguments& arguments, Host& host) {
  if (arguments.plan.json) return print_json(host.output, Json::array());
  host.output.print("Nothing was changed.\n");
}

template <class T>
void require_sound_state(const veldra::Library& states, unsigned state,
                         const veldra::Library& library, unsigned stored) {
  const auto before = library.get<T>(stored);
  require_sound(*states.get<T>(state), before ? faults_of(*before) : std::vector<std::string>());
}

/// Throws `LibraryFailure` for a value with which nobody could compute and that was not there
/// before.
void require_sound_states(const EditedObjects::States& states, const veldra::Library& library) {
  for (const auto& [key, stored] : states.rules.states_of) {
    key.type == veldra::ObjectType::Material
        ? require_sound_state<veldra::Material>(*states.sources.library, key.id, library, stored)
        : require_sound_state<veldra::Composition>(*states.sources.library, key.id, library,
                                                   stored);
  }
}

/// Does what the text says that somebody has edited.
void apply(const Arguments& arguments, Host& host, const EditedObjects& objects,
           const std::string& file, const std::string& text) {
  working_on(arguments.file, [&] {
    Destination(arguments.file, arguments.plan.dry_run, host)
        .take_existing([&](const std::shared_ptr<veldra::Library>& library) {
          const auto states = objects.states_in(file, text, *library);
          require_sound_states(states, *library);
          PlannedChange change(arguments.plan, host, "editing");
          change.advise("");
          change.report_by([&](const auto& plan, const auto& mapping) {
            tell_edited(plan, mapping, {}, arguments.plan, host);
            const bool tells_why = arguments.plan.dry_run && !arguments.plan.json;
            if (tells_why) tell_nothing_written(arguments.plan, host);
          });
          return change.carry_out(states.sources.library, *library, states.rules);
        });
  });
}

/// What somebody has written is not lost because it does not do.
void keep_if_changed(PrivateFile& file, const std::string& before, const std::string& note,
                     Host& host) {
  try {
    if (content_of(file.path()) == before) return;
  } catch (const Failure&) {
    if (!file_exists(file.path())) return;
  } catch (...) {
    // It may be what was asked to be stopped, or what there is no memory for.
  }
  host.notes += note;
  file.keep();
}

void edit(const Arguments& arguments, Host& host, const EditedObjects& objects) {
  forbid_sudden_end();
  PrivateFile file("veldra.json", objects.text());
  const auto note = fmt::format("veldra: what was edited is kept in {}\n", in_quotes(file.path()));
  host.notes.reserve(note.size());
  try {
    edit_file(file.path());
    const auto text = content_of(file.path());
    if (text == objects.text()) return tell_nothing_changed(arguments, host);
    apply(arguments, host, objects, file.path(), text);
    if (host.status == Status::Failed) keep_if_changed(file, objects.text(), note, host);
  } catch (...) {
    keep_if_changed(file, objects.text(), note, host);
    throw;
  }
}

void edit(Arguments& arguments, Host& host) {
  take_selection(arguments.texts, arguments.selection);
  if (!arguments.texts.empty()) named_object(arguments.texts.front());
  const auto objects = reading(arguments.file, [&](const veldra::Library& library) {
    return EditedObjects(library, keys_of(library, arguments.selection));
  });
  if (objects.empty()) return tell_nothing_changed(arguments, host);
  edit(arguments, host, objects);
}

}  // namespace

void add_edit(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "edit", "Edit materials and compositions as JSON, in the editor of $VISUAL or $EDITOR");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command
      .add_option("OBJECT", arguments->texts,
                  fmt::format("What to edit, {}; or KIND with --where", objects_help()))
      ->required()
      ->type_name("");
  const auto* where = add_selection(command, arguments->selection);
  add_backup(command, host);
  add_plan_arguments(command, arguments->plan);
  add_example(command, "veldra edit office.lib 'composition:Cavity wall'");
  command.callback([arguments, where, &host] {
    arguments->selection.filtered = where->count() > 0;
    edit(*arguments, host);
  });
}

}  // namespace veldra_tool
