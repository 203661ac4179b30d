// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "csv.hpp"
#include "files/output_file.hpp"
#include "files/path.hpp"
#include "host.hpp"
#include "json.hpp"
#include "lookup.hpp"
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

template <class T>
Json names_to_json(const veldra::Library& library) {
  Json names = Json::array();
  for (const auto& object : all_objects<T>(library)) names.push_back(object->name().utf8());
  return names;
}

template <class T>
Json objects_to_json(const veldra::Library& library, Progress& progress) {
  Json objects = Json::array();
  for (const auto& object : all_objects<T>(library)) {
    objects.push_back(to_json(*object));
    progress.step();
  }
  return objects;
}

/// Properties of one name are told apart by the kind of object that they are for.
Json properties_to_json(const veldra::Library& library) {
  auto properties = all_objects<veldra::CustomProperty>(library);
  std::stable_sort(properties.begin(), properties.end(), [](const auto& left, const auto& right) {
    if (left->name() != right->name()) return left->name() < right->name();
    return left->object_type() < right->object_type();
  });
  Json objects = Json::array();
  for (const auto& property : properties) objects.push_back(to_json(*property));
  return objects;
}

std::string json_of(const veldra::Library& library, Progress& progress) {
  Json json = Json::object();
  json["format"] = "veldra";
  json["version"] = 1;
  json["library"] = settings_to_json(library);
  json["tags"] = names_to_json<veldra::Tag>(library);
  json["layers"] = names_to_json<veldra::Layer>(library);
  json["material_types"] = names_to_json<veldra::MaterialType>(library);
  json["custom_properties"] = properties_to_json(library);
  json["materials"] = objects_to_json<veldra::Material>(library, progress);
  json["compositions"] = objects_to_json<veldra::Composition>(library, progress);
  return json_text(json);
}

bool goes_to_terminal(const std::string& output) {
  if (is_standard_output(output)) return ::isatty(STDOUT_FILENO) == 1;
  struct stat found {};
  if (::stat(output.c_str(), &found) != 0 || !S_ISCHR(found.st_mode)) return false;
  const int device = ::open(output.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  const bool terminal = device >= 0 && ::isatty(device) == 1;
  if (device >= 0) ::close(device);
  return terminal;
}

std::string text_of(const veldra::Library& library, const Arguments& arguments) {
  Progress progress("exporting");
  if (arguments.format == "json") return json_of(library, progress);
  const auto reader = goes_to_terminal(arguments.output) ? CsvFor::People : CsvFor::Programs;
  return csv_of(library, reader, progress);
}

void print_written(const Arguments& arguments, const std::string& text,
                   const veldra::Library& library, Spool& output) {
  Json written = written_to_json(arguments.output, arguments.format, text);
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
  const auto text = reading(arguments.file, [&](const veldra::Library& library) {
    auto whole = text_of(library, arguments);
    if (arguments.json && !is_standard_output(arguments.output)) {
      print_written(arguments, whole, library, host.output);
    }
    return whole;
  });
  output.write(host, text);
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
