#include "arguments.hpp"

#include "kinds.hpp"

namespace veldra_tool {

void add_file(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, "The library file")->required();
}

void add_kind(CLI::App& command, veldra::ObjectType& kind) {
  command
      .add_option("KIND", kind,
                  "The kind of objects: materials, compositions, types, layers, properties, tags")
      ->required()
      ->transform(CLI::CheckedTransformer(kinds_by_name(), CLI::ignore_case).description(""));
}

void add_json(CLI::App& command, bool& json) {
  command.add_flag("--json", json, "Print JSON instead of text");
}

void add_unit(CLI::App& command, veldra::Unit& unit) {
  const std::map<std::string, veldra::Unit> units{{"mm", veldra::Unit::Millimetres},
                                                  {"in", veldra::Unit::Inches}};
  command.add_option("--unit", unit, "The unit of lengths in a new library: mm (default) or in")
      ->transform(CLI::CheckedTransformer(units, CLI::ignore_case).description(""));
}

void add_example(CLI::App& command, const std::string& example) {
  command.footer("Example:\n  " + example);
}

}  // namespace veldra_tool
