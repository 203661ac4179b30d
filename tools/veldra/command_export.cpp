// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "csv.hpp"
#include "files/output_file.hpp"
#include "files/path.hpp"
#include "host.hpp"
#include "json.hpp"
#include "opening.hpp"
#include "progress.hpp"
#include "summary.hpp"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::string format;
  std::string output;
  bool force = false;
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

/// Writes the text into a spool; gives its size.
std::size_t write_text(const veldra::Library& library, const Arguments& arguments, Spool& text) {
  Progress progress("exporting");
  if (arguments.format != "json") {
    const auto reader = goes_to_terminal(arguments.output) ? CsvFor::People : CsvFor::Programs;
    const auto table = csv_of(library, reader, progress);
    text.write(table);
    return table.size();
  }
  std::size_t size = 0;
  const auto keep = [&](std::string_view part) {
    text.write(part);
    size += part.size();
  };
  kit::write_json(library, keep, [&progress] { progress.step(); });
  return size;
}

void print_written(const Arguments& arguments, std::size_t bytes, const veldra::Library& library,
                   Spool& output) {
  Json written = written_to_json(arguments.output, arguments.format, bytes);
  written["counts"] = counts_of(library);
  print_json(output, written);
}

/// With --json everything on standard output is JSON.
void require_sense(const Arguments& arguments) {
  if (!arguments.json || arguments.format == "json" || !is_standard_output(arguments.output)) {
    return;
  }
  throw CLI::ValidationError("--json", "a table is no JSON; give a file for it with -o");
}

/// Nobody needs to say what the name of the output says.
std::string usual_format(const std::string& output) {
  return !is_standard_output(output) && ending_of(output) == "csv" ? "csv" : "json";
}

void export_library(Arguments& arguments, Host& host) {
  if (arguments.format.empty()) arguments.format = usual_format(arguments.output);
  require_sense(arguments);
  const OutputFile output(arguments.output, arguments.file, arguments.force);
  require_ending(arguments.output, arguments.format);
  const bool to_standard_output = is_standard_output(arguments.output);
  Spool kept;
  reading(arguments.file, [&](const veldra::Library& library) {
    const auto bytes = write_text(library, arguments, to_standard_output ? host.output : kept);
    if (arguments.json && !to_standard_output) {
      print_written(arguments, bytes, library, host.output);
    }
  });
  if (!to_standard_output) output.write(host, kept);
}

}  // namespace

void add_export(Host& host) {
  auto& command = *host.arguments.add_subcommand("export", "Write a whole library as text");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  add_format(command, arguments->format);
  add_output(command, arguments->output, arguments->force);
  add_json_of_file(command, arguments->json);
  add_example(command, "veldra export office.lib -o office.json");
  command.callback([arguments, &host] { export_library(*arguments, host); });
}

}  // namespace veldra_tool
