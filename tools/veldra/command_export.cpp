// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "files/output_file.hpp"
#include "files/path.hpp"
#include "formats.hpp"
#include "host.hpp"
#include "json.hpp"
#include "object_arguments.hpp"
#include "opening.hpp"
#include "progress.hpp"
#include "summary.hpp"

#include "text.hpp"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::string format;
  std::string table;
  std::string locale;
  std::vector<std::string> objects;
  Selection selection;
  std::string output;
  bool force = false;
  bool verbose = false;
  bool json = false;
};

bool goes_to_terminal(const std::string& output) {
  if (is_standard_output(output)) return ::isatty(STDOUT_FILENO) == 1;
  struct stat found {};
  if (::stat(output.c_str(), &found) != 0 || !S_ISCHR(found.st_mode)) return false;
  const int device = ::open(output.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  const bool terminal = device >= 0 && ::isatty(device) == 1;
  if (device >= 0) ::close(device);
  return terminal;
}

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

bool is_json(const kit::Format& format) { return word_of(format) == "json"; }

bool is_binary(const kit::Format& format) { return word_of(format) == "xlsx"; }

/// Lines in which nothing steers a terminal. JSON has escapes of its own.
std::string printable_lines(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    const bool returns = end > 0 && end < text.size() && text[end - 1] == '\r';
    result += printable(text.substr(0, returns ? end - 1 : end));
    result += text.substr(returns ? end - 1 : end, returns ? 2 : 1);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return result;
}

/// A row of a table may be of several lines, and is shown as one.
std::string printable_row(std::string_view row) {
  constexpr std::string_view end = "\r\n";
  return printable(row.substr(0, row.size() - end.size())) + std::string(end);
}

/// Writes a library in a format, and tells what the format has no place for.
class Export {
 public:
  Export(const Arguments& arguments, const kit::Format& format, Host& host)
      : arguments_(arguments), format_(format), host_(host) {
    rules_.table = arguments.table.empty() ? "materials" : arguments.table;
    const auto signs = table_signs(arguments.locale);
    rules_.separator = ending_of(arguments.output) == "tsv" ? '\t' : signs.separator;
    rules_.decimal = signs.decimal;
  }

  /// Writes the text into a spool; gives its size.
  std::size_t write(const veldra::Library& library, Spool& text) {
    Progress progress("exporting");
    rules_.progress = [&progress] { progress.step(); };
    const bool to_terminal = !is_json(format_) && goes_to_terminal(arguments_.output);
    std::size_t size = 0;
    const auto keep = [&](std::string_view part) {
      size += part.size();
      if (!to_terminal) return text.write(part);
      text.write(is_table() ? printable_row(part) : printable_lines(part));
    };
    if (is_for_spreadsheet() && !to_terminal) keep(byte_order_mark);
    tell(write_wanted(library, keep));
    if (is_table() && arguments_.table.empty()) tell_other_tables(library);
    return size;
  }

 private:
  bool is_table() const { return word_of(format_) == "csv"; }

  /// Spreadsheets take the letters of a table that is not marked for those of their region.
  bool is_for_spreadsheet() const { return is_table() && !arguments_.locale.empty(); }

  kit::WriteReport write_wanted(const veldra::Library& library, const kit::TextSink& sink) const {
    if (arguments_.selection.is_empty()) return kit::write(library, format_, sink, rules_);
    return kit::write(library, keys_of(library, arguments_.selection), format_, sink, rules_);
  }

  void tell(const kit::WriteReport& report) {
    if (report.is_whole()) return;
    host_.status = Status::Findings;
    tell_problems(report.problems);
    for (const auto& field : report.not_written) {
      note(fmt::format("{} has no place for {} of {}, {}", format_.name, in_quotes(field.field),
                       field.object_class, left_out(field.count)));
    }
    for (const auto& field : report.missing) {
      note(fmt::format("{} demands {} of each {}, which {} lack{}", format_.name,
                       in_quotes(field.field), printable(field.object_class), field.count,
                       field.count == 1 ? "s" : ""));
    }
  }

  void tell_problems(const std::vector<std::string>& problems) {
    constexpr std::size_t most = 20;
    const bool all = arguments_.verbose || problems.size() <= most;
    const std::size_t told = all ? problems.size() : most;
    for (std::size_t i = 0; i < told; ++i) note(printable(problems[i]));
    if (all) return;
    note(fmt::format("{} more are written otherwise than they are; --verbose tells of each",
                     problems.size() - told));
  }

  static std::string left_out(std::size_t count) {
    return count == 1 ? "1 value is left out" : fmt::format("{} values are left out", count);
  }

  void tell_other_tables(const veldra::Library& library) {
    if (library.count<veldra::Composition>() == 0) return;
    note("a table holds the materials; --table compositions and --table layers write the others");
  }

  void note(const std::string& sentence) { host_.notes += fmt::format("veldra: {}\n", sentence); }

  const Arguments& arguments_;
  const kit::Format& format_;
  Host& host_;
  kit::WriteRules rules_;
};

void print_written(const Arguments& arguments, const kit::Format& format, std::size_t bytes,
                   const veldra::Library& library, Spool& output) {
  Json written = written_to_json(arguments.output, word_of(format), bytes);
  if (arguments.selection.is_empty()) written["counts"] = counts_of(library);
  print_json(output, written);
}

/// With --json everything on standard output is JSON.
void require_sense(const Arguments& arguments, const kit::Format& format) {
  if (!arguments.table.empty() && word_of(format) != "csv") {
    throw CLI::ValidationError("--table", "only csv has several tables");
  }
  if (is_binary(format) && goes_to_terminal(arguments.output)) {
    throw CLI::ValidationError("--output", "a workbook is no text; give a file for it with -o");
  }
  if (!arguments.json || is_json(format) || !is_standard_output(arguments.output)) return;
  throw CLI::ValidationError("--json",
                             word_of(format) == "csv"
                                 ? "a table is no JSON; give a file for it with -o"
                                 : "what is written is no such JSON; give a file for it with -o");
}

void write_library(const Arguments& arguments, Host& host) {
  const OutputFile output(arguments.output, arguments.file, arguments.force);
  const auto& format = format_for(arguments.format, arguments.output);
  require_sense(arguments, format);
  const bool to_standard_output = is_standard_output(arguments.output);
  Spool kept;
  reading(arguments.file, [&](const veldra::Library& library) {
    host.notes.clear();
    Export work(arguments, format, host);
    const auto bytes = work.write(library, to_standard_output ? host.output : kept);
    if (arguments.json && !to_standard_output) {
      print_written(arguments, format, bytes, library, host.output);
    }
  });
  if (!to_standard_output) output.write(host, kept);
}

/// What a file has no place for is of no interest where none was written.
void export_library(const Arguments& arguments, Host& host) {
  try {
    write_library(arguments, host);
  } catch (...) {
    if (!host.done) host.notes.clear();
    throw;
  }
}

/// Takes what is to be written from the arguments; nothing stands for the whole library.
void take_objects(Arguments& arguments) {
  auto& texts = arguments.objects;
  if (texts.empty() && !arguments.selection.filtered) return;
  take_selection(texts, arguments.selection);
  if (!texts.empty()) named_object(texts.front());
}

void add_format(CLI::App& command, Arguments& arguments) {
  const auto known = [](const std::string& text) {
    const auto* format = kit::find_format(text);
    if (format != nullptr) return std::string();
    return fmt::format("{} is none of {}", in_quotes(text), writable_formats());
  };
  command
      .add_option("--format", arguments.format,
                  "json: everything, for 'import' to read again; csv: a table; xlsx: a workbook "
                  "of all tables; or another format, "
                  "of which 'export' tells what it has no place for. By default that of the "
                  "ending of OUT, or json")
      ->check(CLI::Validator(known, "", writable_formats()))
      ->type_name("FORMAT");
  const std::vector<std::string> tables{"materials", "compositions", "layers"};
  command
      .add_option("--table", arguments.table,
                  "What a table holds: materials (default), compositions, or the layers of "
                  "compositions")
      ->check(CLI::IsMember(tables))
      ->type_name("TABLE");
  add_table_locale(command, arguments.locale);
}

}  // namespace

void add_export(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "export", "Write a library, or objects of it and what they refer to, as text");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command
      .add_option("OBJECT", arguments->objects,
                  fmt::format("What to write, each as KIND:OBJECT, which is {}, or KIND with "
                              "--where; by default everything",
                              naming_help))
      ->type_name("");
  const auto* where = add_selection(command, arguments->selection);
  add_format(command, *arguments);
  add_output(command, arguments->output, arguments->force);
  command.add_flag(
      "--verbose", arguments->verbose,
      "Tell of each object that is written otherwise than it is, also of more than 20");
  add_json_of_file(command, arguments->json);
  add_example(command, "veldra export office.lib -o office.json",
              "the format has no place for something that the library holds, or demands something "
              "that it lacks");
  command.callback([arguments, where, &host] {
    arguments->selection.filtered = where->count() > 0;
    take_objects(*arguments);
    export_library(*arguments, host);
  });
}

}  // namespace veldra_tool
