// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "drawing/sheet.hpp"
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
  std::string boundary;
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

void print_written(const Arguments& arguments, const std::string& sheet,
                   const Compositions& compositions, Spool& output) {
  Json written = written_to_json(arguments.output, "svg", sheet.size());
  written["compositions"] = to_json(compositions);
  print_json(output, written);
}

DrawingWishes wishes_of(const Arguments& arguments, const veldra::Library& library) {
  DrawingWishes wishes;
  wishes.locale = library.locale().utf8();
  if (!arguments.orientation.empty()) wishes.lying = arguments.orientation == "lying";
  if (!arguments.type.empty()) wishes.type = composition_type(arguments.type);
  wishes.boundary = boundary_asked(arguments.boundary);
  return wishes;
}

void draw(const Arguments& arguments, Host& host) {
  if (arguments.json && is_standard_output(arguments.output)) {
    throw CLI::ValidationError("--json", "a drawing is no JSON; give a file for it with -o");
  }
  const OutputFile output(arguments.output, arguments.file, arguments.force);
  require_ending(arguments.output, "svg");
  const auto sheet = reading(arguments.file, [&](const veldra::Library& library) {
    const auto compositions = wanted_compositions(library, arguments);
    auto drawn = draw_sheet(compositions, library.unit(), wishes_of(arguments, library));
    if (arguments.json) print_written(arguments, drawn, compositions, host.output);
    return drawn;
  });
  output.write(host, sheet);
}

}  // namespace

void add_draw(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "draw", "Draw sections through build-ups, to scale, as an SVG picture");
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
      ->check(CLI::IsMember({"standing", "lying"}))
      ->type_name("WAY");
  command
      .add_option("--type", arguments->type,
                  "Draw them as wall, floor, roof or other, whatever their types are")
      ->check(CLI::IsMember({"wall", "floor", "roof", "other"}))
      ->type_name("TYPE");
  add_boundary(command, arguments->boundary);
  add_output(command, arguments->output, arguments->force);
  add_json_of_file(command, arguments->json);
  add_example(command, "veldra draw office.lib 'Cavity wall' 'Flat roof' -o sheet.svg");
  command.callback([arguments, &host] { draw(*arguments, host); });
}

}  // namespace veldra_tool
