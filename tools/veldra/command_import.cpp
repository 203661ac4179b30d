#include "arguments.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "import/sources.hpp"
#include "import/staging.hpp"
#include "json.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "process/writing.hpp"
#include "progress.hpp"

#include <fmt/format.h>

#include <filesystem>
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

std::vector<Source> read_sources(const Arguments& arguments) {
  std::vector<Source> sources;
  for (const auto& file : arguments.sources) sources.emplace_back(file);
  return sources;
}

/// The unit of a library that is made by the import: that of the first source that has one.
veldra::Unit unit_for(const std::vector<Source>& sources, const Arguments& arguments) {
  if (arguments.unit_given) return arguments.unit;
  for (const auto& source : sources) {
    if (const auto unit = source.unit()) return *unit;
  }
  return arguments.unit;
}

/// The library that the import goes into. One that was made for it goes again if the import
/// fails.
class Destination {
 public:
  Destination(const Arguments& arguments, const std::vector<Source>& sources)
      : file_(arguments.file) {
    if (file_exists(file_)) {
      library_ = open_library(file_, Access::Write);
    } else if (arguments.dry_run) {
      library_ = veldra::Library::create(":memory:", unit_for(sources, arguments), "");
    } else {
      library_ = create_library(file_, unit_for(sources, arguments), "");
      made_ = true;
    }
  }
  Destination(const Destination&) = delete;
  Destination& operator=(const Destination&) = delete;
  ~Destination() {
    if (!made_) return;
    library_.reset();
    std::error_code error;
    std::filesystem::remove(file_, error);
  }

  const std::shared_ptr<veldra::Library>& library() const { return library_; }
  void keep() { made_ = false; }

 private:
  std::string file_;
  std::shared_ptr<veldra::Library> library_;
  bool made_ = false;
};

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
void adopt_settings(veldra::Library& library, const ImportSet& set) {
  if (library.locale().empty() && set.locale()) library.locale(set.locale());
  if (library.region().empty() && set.region()) library.region(set.region());
  if (set.types()) remove_other_types(library, *set.types());
}

void require_no_problems(const ImportReport& report) {
  std::size_t count = 0;
  for (const auto& source : report) count += source.problems.size();
  if (count == 0) return;
  throw Failure(fmt::format("nothing is imported, because there {}",
                            count == 1 ? "is a problem" : fmt::format("are {} problems", count)));
}

void print_problems(const ImportReport& report) {
  for (const auto& source : report) {
    for (const auto& problem : source.problems) say(fmt::format("veldra: {}\n", problem));
  }
}

ImportReport import_into(Destination& destination, const std::vector<Source>& sources,
                         const Arguments& arguments, Progress& progress) {
  const auto& library = destination.library();
  ImportReport report(sources.size());
  ImportSet set(library->unit(), arguments.on_conflict, arguments.tags);
  for (std::size_t i = 0; i < sources.size(); ++i) {
    report[i].file = sources[i].file();
    report[i].format = sources[i].format();
    sources[i].add_to(set, library->unit(), report[i]);
  }
  set.resolve();
  print_problems(report);
  if (arguments.strict) require_no_problems(report);
  veldra::Library::Transaction transaction(*library);
  const bool was_empty = is_empty(*library);
  transfer_set(set, library, arguments.on_conflict, report, progress);
  if (was_empty) adopt_settings(*library, set);
  if (!arguments.dry_run) transaction.commit();
  return report;
}

ImportReport imported(const Arguments& arguments) {
  Progress progress("importing");
  const auto sources = read_sources(arguments);
  return working_on(arguments.file, [&] {
    Destination destination(arguments, sources);
    const auto report = import_into(destination, sources, arguments, progress);
    destination.keep();
    return report;
  });
}

void import(const Arguments& arguments, Host& host) {
  const auto report = imported(arguments);
  if (arguments.json) return print_json(host.output, to_json(report));
  host.output.write(text_of(report));
  if (arguments.dry_run) host.output.print("Nothing was written, because this was a dry run.\n");
}

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
  command.add_flag("--strict", arguments->strict, "Import nothing when there is any problem");
  add_json(command, arguments->json);
  add_example(command, "veldra import office.lib walls.idf glass.epJSON --on-conflict use");
  command.callback([arguments, &command, &host] {
    arguments->unit_given = command.count("--unit") > 0;
    import(*arguments, host);
  });
}

}  // namespace veldra_tool
