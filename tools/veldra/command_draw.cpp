// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "failure.hpp"
#include "files/output_file.hpp"
#include "host.hpp"
#include "json.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "proof.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::vector<std::string> compositions;
  std::string orientation;
  std::string type;
  ProofWishes proof;
  std::string format;
  std::string output;
  bool force = false;
  bool json = false;
};

using Compositions = std::vector<std::shared_ptr<veldra::Composition>>;

Compositions wanted_compositions(const veldra::Library& library, const Arguments& arguments) {
  Compositions compositions;
  for (const auto& text : arguments.compositions) {
    compositions.push_back(find_object<veldra::Composition>(library, text));
  }
  return compositions;
}

Json to_json(const Compositions& compositions) {
  Json list = Json::array();
  for (const auto& composition : compositions) {
    const veldra::ObjectKey key(veldra::ObjectType::Composition, composition->id());
    list.push_back(key_to_json(key, composition->name().utf8()));
  }
  return list;
}

/// The ending tells, where no format is asked for.
std::string format_of(const Arguments& arguments) {
  if (!arguments.format.empty()) return arguments.format;
  const auto point = arguments.output.rfind('.');
  const auto ending =
      point == std::string::npos ? "" : kit::lower_case(arguments.output.substr(point + 1));
  return ending == "html" || ending == "pdf" ? ending : "svg";
}

void print_written(const Arguments& arguments, const std::string& sheet,
                   const Compositions& compositions, Spool& output) {
  Json written = written_to_json(arguments.output, format_of(arguments), sheet.size());
  written["compositions"] = to_json(compositions);
  print_json(output, written);
}

kit::DrawingRules rules_of(const Arguments& arguments, const ProofRequest& request,
                           const veldra::Library& library) {
  kit::DrawingRules rules;
  rules.locale = library.locale().utf8();
  if (!arguments.orientation.empty()) rules.lying = arguments.orientation == "lying";
  if (!arguments.type.empty()) rules.type = composition_type(arguments.type);
  rules.boundary = request.boundary;
  rules.climate = request.climate;
  return rules;
}

/// What goes wrong here is no fault of the library.
std::string pdf_of(const std::string& svg, const std::string& title) {
  try {
    return kit::pdf_of(svg, title);
  } catch (const kit::Error& error) {
    throw Failure(error.what());
  }
}

/// The sheet in the format that is wanted.
std::string document_of(const Compositions& compositions, const Arguments& arguments,
                        const ProofRequest& request, const veldra::Library& library) {
  const auto rules = rules_of(arguments, request, library);
  auto svg = kit::draw_sheet(compositions, library.unit(), rules);
  const auto format = format_of(arguments);
  if (format == "svg") return svg;
  std::string title;
  for (const auto& each : compositions) {
    title += (title.empty() ? "" : ", ") + each->name().utf8();
  }
  return format == "pdf" ? pdf_of(svg, title) : kit::page_of(svg, title, rules.locale);
}

void draw(const Arguments& arguments, Host& host) {
  if (arguments.json && is_standard_output(arguments.output)) {
    throw CLI::ValidationError("--json", "a drawing is no JSON; give a file for it with -o");
  }
  const auto request = read_wishes(arguments.proof);
  const OutputFile output(arguments.output, arguments.file, arguments.force);
  require_ending(arguments.output, format_of(arguments));
  const auto sheet = reading(arguments.file, [&](const veldra::Library& library) {
    const auto compositions = wanted_compositions(library, arguments);
    auto drawn = document_of(compositions, arguments, request, library);
    if (arguments.json) print_written(arguments, drawn, compositions, host.output);
    return drawn;
  });
  output.write(host, sheet);
}

}  // namespace

void add_draw(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "draw",
      "Draw sections through build-ups, to scale, with layers and figures, as SVG, HTML or PDF");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command
      .add_option("COMPOSITION", arguments->compositions,
                  fmt::format("The build-ups, each {}", naming_help))
      ->required()
      ->type_name("");
  command
      .add_option("--orientation", arguments->orientation,
                  "standing or lying; else as the type of each says")
      ->check(one_of({"standing", "lying"}))
      ->type_name("WAY");
  command
      .add_option(
          "--type", arguments->type,
          "Draw them as wall, floor, roof or other, whatever their types are; figures keep those")
      ->check(one_of({"wall", "floor", "roof", "other"}))
      ->type_name("TYPE");
  add_climate(command, arguments->proof);
  command
      .add_option("--format", arguments->format,
                  "svg, html or pdf; else what the ending of OUT says, and svg without one")
      ->check(one_of({"svg", "html", "pdf"}))
      ->type_name("FORMAT");
  add_output(command, arguments->output, arguments->force);
  add_json_of_file(command, arguments->json);
  add_example(command, "veldra draw office.lib 'Cavity wall' 'Flat roof' -o sheet.svg");
  command.callback([arguments, &host] { draw(*arguments, host); });
}

}  // namespace veldra_tool
