#include "arguments.hpp"
#include "drawing/sheet.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "json.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "output.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::vector<std::string> compositions;
  std::string output;
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

void draw(const Arguments& arguments, Host& host) {
  if (arguments.json && is_standard_output(arguments.output)) {
    throw CLI::ValidationError("--json", "a drawing is no JSON; give a file for it with -o");
  }
  const auto library = open_library(arguments.file, Access::Read);
  const auto compositions =
      working_on(arguments.file, [&] { return wanted_compositions(*library, arguments); });
  const auto sheet = draw_sheet(compositions, library->unit());
  write_output(host.output, arguments.output, sheet);
  if (!arguments.json) return;
  Json written = written_to_json(arguments.output, "svg", sheet);
  written["compositions"] = to_json(compositions);
  print_json(host.output, written);
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
  add_output(command, arguments->output);
  add_json_of_file(command, arguments->json);
  add_example(command, "veldra draw office.lib 'Cavity wall' 'Flat roof' -o sheet.svg");
  command.callback([arguments, &host] { draw(*arguments, host); });
}

}  // namespace veldra_tool
