// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "files/new_library.hpp"
#include "files/reading.hpp"
#include "host.hpp"
#include "import/staging.hpp"
#include "json.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "progress.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::vector<std::string> sources;
  OnConflict on_conflict = OnConflict::Fail;
  std::vector<std::string> tags;
  veldra::Unit unit = veldra::Unit::Millimetres;
  bool unit_given = false;
  bool dry_run = false;
  bool strict = false;
  bool json = false;
};

std::vector<kit::Source> read_sources(const Arguments& arguments) {
  std::vector<kit::Source> sources;
  for (const auto& file : arguments.sources) sources.emplace_back(file, content_of(file));
  return sources;
}

/// The unit of a library that is made by the import: that of the first source that has one.
veldra::Unit unit_for(const std::vector<kit::Source>& sources, const Arguments& arguments) {
  if (arguments.unit_given) return arguments.unit;
  for (const auto& source : sources) {
    if (const auto unit = source.unit()) return *unit;
  }
  return arguments.unit;
}

bool is_empty(const veldra::Library& library) {
  return library.count<veldra::Material>() + library.count<veldra::Composition>() +
             library.count<veldra::Tag>() + library.count<veldra::Layer>() +
             library.count<veldra::CustomProperty>() ==
         0;
}

/// A catalogue that lists all its material types says which an empty library has after it.
void remove_other_types(veldra::Library& library, const std::set<veldra::String>& types) {
  std::set<unsigned> others;
  for (const auto& type : all_objects<veldra::MaterialType>(library)) {
    if (types.count(type->name()) == 0) others.insert(type->id());
  }
  library.remove<veldra::MaterialType>(others);
}

/// An empty library takes over what a catalogue says of its own library.
void adopt_settings(veldra::Library& library, const kit::Sources& sources) {
  if (library.locale().empty() && sources.locale) library.locale(sources.locale);
  if (library.region().empty() && sources.region) library.region(sources.region);
  if (sources.types) remove_other_types(library, *sources.types);
}

/// All that did not go as one might expect, a line each.
std::vector<std::string> findings_in(const kit::Sources& sources) {
  std::vector<std::string> findings;
  for (const auto& source : sources.reports) {
    for (const auto& problem : source.problems) findings.push_back(printable(problem.text()));
    for (const auto& [what, count] : dropped_in(source)) {
      findings.push_back(fmt::format("{}: {} {} have no place in a library and are left out",
                                     in_quotes(source.file), count, what));
    }
  }
  return findings;
}

void print(const ImportReport& report, const Arguments& arguments, Spool& output) {
  if (arguments.json) return print_json(output, to_json(report));
  output.write(text_of(report));
  if (arguments.dry_run) output.print("Nothing was written, because this was a dry run.\n");
}

/// One import of all sources. It may be tried with one library after another.
class Import {
 public:
  Import(const Arguments& arguments, Host& host)
      : arguments_(arguments), host_(host), sources_(read_sources(arguments)) {}

  /// Goes into the library that is there, be it that somebody makes it meanwhile, or into one that
  /// is made for it.
  void run() {
    while (!file_exists(arguments_.file)) {
      require_place_for_library(arguments_.file);
      if (arguments_.dry_run || !any_objects()) return pretend_with_new();
      if (into_new()) return;
    }
    into_existing();
  }

 private:
  bool any_objects() const {
    return std::any_of(sources_.begin(), sources_.end(),
                       [](const kit::Source& source) { return source.has_objects(); });
  }

  void into_existing() {
    tell_as_it_was(arguments_.file);
    const auto library = open_library(arguments_.file, Access::Write);
    into(library);
    host_.done = !arguments_.dry_run;
  }

  bool into_new() {
    NewLibrary made(arguments_.file, unit_for(sources_, arguments_), "");
    into(made.library());
    if (made.put_into_place(host_)) return true;
    host_.output.clear();
    return false;
  }

  void pretend_with_new() {
    into(watched(veldra::Library::create(":memory:", unit_for(sources_, arguments_), "")));
  }

  void into(const std::shared_ptr<veldra::Library>& library) {
    const kit::Sources sources = read_all(library->unit());
    veldra::Library::Transaction transaction(*library);
    forbid_sudden_end();  // from here on the file may be written
    const bool was_empty = is_empty(*library);
    const auto report = transfer_sources(
        sources, library, {arguments_.on_conflict, arguments_.tags.empty()}, progress_);
    if (was_empty) adopt_settings(*library, sources);
    print(report, arguments_, host_.output);
    stop_if_asked();
    if (!arguments_.dry_run) transaction.commit();
  }

  kit::Sources read_all(veldra::Unit unit) {
    kit::SourceRules rules;
    rules.unit = unit;
    rules.on_clash = arguments_.on_conflict;
    rules.tags = arguments_.tags;
    rules.on_object = [this] { progress_.step(); };
    auto sources = kit::read_together(sources_, rules);
    tell_findings(sources);
    return sources;
  }

  void tell_findings(const kit::Sources& sources) {
    const auto findings = findings_in(sources);
    host_.notes.clear();
    for (const auto& finding : findings) host_.notes += fmt::format("veldra: {}\n", finding);
    host_.status = findings.empty() ? Status::Done : Status::Findings;
    if (findings.empty()) return;
    if (!arguments_.strict) return;
    const auto count = findings.size();
    throw Failure(fmt::format("nothing is imported, because there {}",
                              count == 1 ? "is a problem" : fmt::format("are {} problems", count)));
  }

  const Arguments& arguments_;
  Host& host_;
  std::vector<kit::Source> sources_;
  Progress progress_{"importing"};
};

}  // namespace

void add_import(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "import", "Read IDF, epJSON and veldra's own JSON into a library, making it if missing");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command.add_option("SOURCE", arguments->sources, "The files to read")->required()->type_name("");
  add_on_conflict(command, arguments->on_conflict);
  add_tags(command, arguments->tags,
           "A tag for every material and composition that is imported; may be given several "
           "times. Without it, those of IDF and epJSON are tagged with the name of their file");
  add_unit(command, arguments->unit);
  command.add_flag("--dry-run", arguments->dry_run, "Tell what would happen, and write nothing");
  command.add_flag("--strict", arguments->strict,
                   "Import nothing when there is any problem, or anything would be left out");
  add_json(command, arguments->json);
  add_example(command, "veldra import office.lib walls.idf glass.epJSON --on-conflict use",
              "anything of the sources has not come in: an object with a problem, a field or asset "
              "that no library has a place for, or all of a source that has no objects; or when "
              "'check' finds fault with a number that has. With --strict that is 1, and nothing is "
              "imported");
  command.callback([arguments, &command, &host] {
    arguments->unit_given = command.count("--unit") > 0;
    working_on(arguments->file, [&] { Import(*arguments, host).run(); });
  });
}

}  // namespace veldra_tool
