#include "arguments.hpp"
#include "drawing/sheet.hpp"
#include "failure.hpp"
#include "host.hpp"
#include "lookup.hpp"
#include "opening.hpp"
#include "output.hpp"

namespace veldra_tool {

namespace {

struct Arguments {
  std::string file;
  std::vector<std::string> compositions;
  std::string output;
};

void draw(const Arguments& arguments) {
  const auto library = open_library(arguments.file, Access::Read);
  const auto sheet = working_on(arguments.file, [&] {
    std::vector<std::shared_ptr<veldra::Composition>> compositions;
    for (const auto& text : arguments.compositions) {
      compositions.push_back(find_object<veldra::Composition>(*library, text));
    }
    return draw_sheet(compositions, library->unit());
  });
  write_output(arguments.output, sheet);
}

}  // namespace

void add_draw(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "draw", "Draw sections through build-ups, to scale, as an SVG picture");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command.add_option("COMPOSITION", arguments->compositions, "Their names or ids")->required();
  add_output(command, arguments->output);
  add_example(command, "veldra draw office.lib 'Cavity wall' 'Flat roof' -o sheet.svg");
  command.callback([arguments] { draw(*arguments); });
}

}  // namespace veldra_tool
