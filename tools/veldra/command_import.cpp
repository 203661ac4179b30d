// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "files/destination.hpp"
#include "files/reading.hpp"
#include "formats.hpp"
#include "host.hpp"
#include "import/report.hpp"
#include "json.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "plan_output.hpp"
#include "planned_change.hpp"
#include "progress.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <optional>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::vector<std::string> sources;
  std::vector<std::string> on_conflict;
  std::vector<std::string> tags;
  veldra::Unit unit = veldra::Unit::Millimetres;
  bool unit_given = false;
  bool strict = false;
  bool keep_unknown = false;
  std::string locale;
  std::uint64_t max_source = most_bytes_of_source;
  PlanArguments plan;
};

/// Whoever has read standard input finds nothing in it the second time.
void require_own_sources(const Arguments& arguments) {
  if (std::count(arguments.sources.begin(), arguments.sources.end(), "-") > 1) {
    throw CLI::ValidationError("SOURCE", "standard input can be read once only");
  }
}

std::vector<kit::Source> read_sources(const Arguments& arguments) {
  std::vector<kit::Source> sources;
  for (const auto& file : arguments.sources) {
    const bool is_file = file != "-";
    const auto most = static_cast<std::size_t>(arguments.max_source);
    sources.emplace_back(is_file ? file : "standard input",
                         is_file ? content_of(file, most) : content_of_standard_input(most));
  }
  return sources;
}

/// Tables say what is to become of what is there, other sources what there is.
void require_one_sort(const std::vector<kit::Source>& sources, const Arguments& arguments) {
  const auto is_table = [](const kit::Source& source) { return source.is_table(); };
  const auto table = std::find_if(sources.begin(), sources.end(), is_table);
  if (table == sources.end()) return;
  const auto other = std::find_if_not(sources.begin(), sources.end(), is_table);
  if (other != sources.end()) {
    throw Failure(fmt::format("{} is a table and {} is none; import tables by themselves",
                              in_quotes(table->file()), in_quotes(other->file())));
  }
  if (arguments.tags.empty()) return;
  throw Failure(fmt::format("{} is a table, whose tags are in its column 'tags'; --tag adds none",
                            in_quotes(table->file())));
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

/// More fields than these are counted where they would hide an error.
constexpr std::size_t few_left_out = 3;

/// A line for each field of which a library has no place for the values.
std::vector<std::string> fields_left_out(const kit::SourceReport& source) {
  std::vector<std::string> lines;
  for (const auto& field : kit::fields_not_kept(source)) {
    lines.push_back(fmt::format("{}: {}: a library has no place for {}, {} {}",
                                in_quotes(source.file), printable(field.object_class),
                                in_quotes(field.field), field.count,
                                field.count == 1 ? "value is left out" : "values are left out"));
  }
  return lines;
}

/// A line for each of the values.
std::vector<std::string> values_left_out(const kit::SourceReport& source) {
  std::vector<std::string> lines;
  for (const auto& value : source.not_kept) {
    lines.push_back(fmt::format("{}, line {}: {} {}: a library has no place for {}, {} is left out",
                                in_quotes(source.file), value.line, printable(value.object_class),
                                in_quotes(value.object), in_quotes(value.field),
                                in_quotes(value.value)));
  }
  return lines;
}

/// A line for all of them.
std::vector<std::string> counted_left_out(const kit::SourceReport& source) {
  const auto fields = kit::fields_not_kept(source).size();
  if (fields <= few_left_out) return fields_left_out(source);
  return {fmt::format("{}: a library has no place for {} fields, {} values would be left out",
                      in_quotes(source.file), fields, source.not_kept.size())};
}

using LinesLeftOut = std::vector<std::string> (*)(const kit::SourceReport&);

/// All that did not go as one might expect, a line each.
std::vector<std::string> findings_in(const kit::Sources& sources, LinesLeftOut left_out) {
  std::vector<std::string> findings;
  for (const auto& source : sources.reports) {
    for (const auto& problem : source.problems) findings.push_back(printable(problem.text()));
    const auto more = left_out(source);
    findings.insert(findings.end(), more.begin(), more.end());
  }
  return findings;
}

std::string notes_of(const std::vector<std::string>& findings) {
  std::string notes;
  for (const auto& finding : findings) notes += fmt::format("veldra: {}\n", finding);
  return notes;
}

/// One import of all sources. It may be tried with one library after another.
class Import {
 public:
  Import(const Arguments& arguments, Host& host)
      : arguments_(arguments),
        host_(host),
        output_(arguments.plan, arguments.file, arguments.sources, host),
        files_(read_sources(arguments)) {
    require_one_sort(files_, arguments);
    tables_ = files_.front().is_table();
  }

  void run() {
    tell_as_it_was(arguments_.file);
    Destination destination(arguments_.file, arguments_.plan.only_tells(), host_);
    if (arguments_.unit_given) destination.demand(arguments_.unit);
    if (!tables_) destination.prepare_by([this](veldra::Unit unit) { read_all(unit); });
    try {
      destination.take(unit_for(files_, arguments_), any_objects(), [this](const auto& library) {
        if (tables_) read_tables(library);
        return into(*library);
      });
    } catch (...) {
      fold_notes();
      throw;
    }
    if (host_.status == Status::Failed) fold_notes();
    output_.write();
  }

 private:
  bool any_objects() const {
    return std::any_of(files_.begin(), files_.end(),
                       [](const kit::Source& source) { return source.has_objects(); });
  }

  bool into(veldra::Library& library) {
    const bool was_empty = is_empty(library);
    PlannedChange change(arguments_.plan, host_, "importing");
    output_.take_from(change, library);
    change.report_by([this](const auto& plan, const auto& mapping) { report(plan, mapping); });
    const bool changed = change.carry_out(watched(sources_.library), library, rules());
    if (was_empty) adopt_settings(library, sources_);
    return changed || was_empty;
  }

  kit::PlanRules rules() const {
    auto rules = rules_of(arguments_.on_conflict, *sources_.library);
    rules.ignores_case = [this](const veldra::ObjectKey& key) {
      const auto origin = sources_.origins.find(key);
      return origin != sources_.origins.end() && origin->second.ignores_case;
    };
    rules.states_of = sources_.states_of;
    return rules;
  }

  void report(const kit::Plan& plan, const veldra::IdMapping& mapping) {
    const ImportReport report(sources_, plan);
    if (arguments_.plan.json) return print_json(host_.output, report.json(mapping));
    host_.output.write(report.text(arguments_.plan.verbose));
    if (arguments_.plan.only_tells()) tell_nothing_written(arguments_.plan, host_);
  }

  /// Happens again where another program has made the library meanwhile.
  void read_all(veldra::Unit unit) {
    if (read_in_ != unit) {
      if (read_in_) read_files_again();
      read_in(unit);
    }
    tell_findings(sources_);
  }

  void read_in(veldra::Unit unit) {
    Progress progress("reading");
    kit::SourceRules rules;
    rules.unit = unit;
    rules.on_clash = general_rule(arguments_.on_conflict);
    rules.tags = arguments_.tags;
    rules.keep_unknown = arguments_.keep_unknown;
    rules.progress = [&progress] { progress.step(); };
    try {
      sources_ = kit::read_together(std::move(files_), rules);
    } catch (const kit::SourceClashes& clashes) {
      refuse(clashes);
    }
    read_in_ = unit;
  }

  /// Standard input is there once only.
  bool can_read_again() const {
    const auto& names = arguments_.sources;
    return std::find(names.begin(), names.end(), "-") == names.end();
  }

  void read_files_again() {
    if (!can_read_again()) {
      throw failure_of(arguments_.file, "another program has made it meanwhile; import once more");
    }
    files_ = read_sources(arguments_);
  }

  /// All of them are told, each with what differs.
  [[noreturn]] void refuse(const kit::SourceClashes& clashes) {
    const auto& problems = clashes.problems();
    if (problems.size() == 1) throw Failure(printable(problems.front().text()));
    for (const auto& problem : problems) {
      host_.notes += fmt::format("veldra: {}\n", printable(problem.text()));
    }
    const bool has_choice = general_rule(arguments_.on_conflict) == kit::OnClash::Fail;
    throw Failure(fmt::format("{} between the sources{}", clashes_text(problems.size()),
                              has_choice ? "; --on-conflict says what to do" : ""));
  }

  /// Happens again where another program has made the library meanwhile.
  void read_tables(const std::shared_ptr<const veldra::Library>& library) {
    if (files_.empty()) read_files_again();
    Progress progress("reading");
    kit::TableRules rules;
    if (!arguments_.locale.empty()) {
      const auto signs = table_signs(arguments_.locale);
      rules.usual_separator = signs.separator;
      rules.decimal = signs.decimal;
    }
    rules.progress = [&progress] { progress.step(); };
    sources_ = kit::read_tables(files_, library, rules);
    if (can_read_again()) files_.clear();
    tell_findings(sources_);
  }

  void tell_findings(const kit::Sources& sources) {
    const auto findings =
        findings_in(sources, arguments_.plan.verbose ? values_left_out : fields_left_out);
    host_.notes = notes_of(findings);
    told_ = host_.notes;
    host_.status = findings.empty() ? Status::Done : Status::Findings;
    if (findings.empty()) return;
    if (!arguments_.strict) return;
    told_.clear();
    const auto count = findings.size();
    throw Failure(fmt::format("nothing is imported, because there {}",
                              count == 1 ? "is a problem" : fmt::format("are {} problems", count)));
  }

  /// An error is found among few lines only, and what did not come in is not what has been left
  /// out.
  void fold_notes() {
    if (told_.empty() || host_.done || arguments_.plan.verbose) return;
    const auto folded = notes_of(findings_in(sources_, counted_left_out));
    host_.notes.replace(0, told_.size(), folded);
    told_.clear();
  }

  const Arguments& arguments_;
  Host& host_;
  PlanOutput output_;
  std::vector<kit::Source> files_;
  bool tables_ = false;
  kit::Sources sources_;
  std::optional<veldra::Unit> read_in_;  ///< the unit of the lengths in these
  std::string told_;                     ///< the beginning of the notes, which can be told shorter
};

/// A number below zero would be taken for a very large one.
std::string not_below_zero(const std::string& size) {
  if (kit::trimmed(size).compare(0, 1, "-") != 0) return "";
  return fmt::format("{} is less than 0", in_quotes(size));
}

}  // namespace

void add_import(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "import",
      "Read files of other programs, tables and JSON into a library, making it if missing");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command.add_option("SOURCE", arguments->sources, "The files to read; - is standard input")
      ->required()
      ->type_name("");
  add_on_conflict(command, arguments->on_conflict);
  add_tags(command, arguments->tags,
           "A tag for every material and composition that is imported; may be given several "
           "times. Without it, those of other programs are tagged with the name of their file");
  add_unit(command, arguments->unit);
  add_plan_arguments(command, arguments->plan);
  add_plan_file(command, arguments->plan);
  command.add_flag("--strict", arguments->strict,
                   "Import nothing when there is any problem, or anything would be left out");
  command.add_flag("--keep-unknown", arguments->keep_unknown,
                   "Keep fields that a library has no place for as custom values, each under the "
                   "names of its class and of itself");
  add_table_locale(command, arguments->locale);
  command
      .add_option("--max-source", arguments->max_source,
                  "The most that is read of each file, such as 200MB; 1 GiB by default")
      ->transform(CLI::AsSizeValue(false))
      ->transform(CLI::Validator(not_below_zero, ""))  // is asked first
      ->type_name("SIZE");
  add_backup(command, host);
  add_example(command, "veldra import office.lib walls.idf glass.epJSON --on-conflict use",
              "anything of the sources has not come in: an object with a problem, a field or asset "
              "that no library has a place for, or all of a source that has no objects; or when "
              "'check' finds fault with a number that has, or an object lacks what its format "
              "demands. With --strict that is 1, and nothing is imported");
  command.callback([arguments, &command, &host] {
    arguments->unit_given = command.count("--unit") > 0;
    require_own_sources(*arguments);
    working_on(arguments->file, [&] { Import(*arguments, host).run(); });
  });
}

}  // namespace veldra_tool
