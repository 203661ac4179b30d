// SPDX-License-Identifier: GPL-2.0-or-later
#include "arguments.hpp"
#include "edit_commands.hpp"
#include "editing.hpp"
#include "host.hpp"
#include "layer_table.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <stdexcept>

namespace veldra_tool {

namespace {

using veldra::Composition;
using veldra::Material;

struct Arguments {
  std::string file;
  std::string composition;
  std::string action;
  std::vector<std::string> texts;
  std::string function;
  PlanArguments plan;
};

/// What an action wants behind it, for people; those in brackets may be left out.
struct Action {
  std::size_t least;
  std::size_t most;
  const char* usage;
  bool takes_function;
};

const std::map<std::string, Action>& actions() {
  static const std::map<std::string, Action> all{
      {"add", {2, 2, "add MATERIAL THICKNESS", true}},
      {"insert", {3, 3, "insert N MATERIAL THICKNESS", true}},
      {"move", {2, 2, "move N M", false}},
      {"remove", {1, 1, "remove N", false}},
      {"set", {1, 3, "set N [MATERIAL [THICKNESS]]", true}}};
  return all;
}

const char* const action_choices = "add, insert, move, remove, set";

/// Throws a `CLI::ParseError` for arguments that are not those of the action.
void require_usage(const Arguments& arguments) {
  const auto& action = actions().at(arguments.action);
  const auto count = arguments.texts.size();
  if (count < action.least || count > action.most) {
    throw CLI::ValidationError("ACTION", fmt::format("it is {}", in_quotes(action.usage)));
  }
  if (!arguments.function.empty() && !action.takes_function) {
    throw CLI::ValidationError("--function",
                               fmt::format("{} does not take it", in_quotes(arguments.action)));
  }
  if (arguments.action == "set" && count == 1 && arguments.function.empty()) {
    throw CLI::ValidationError("ACTION", "say what to set: MATERIAL, THICKNESS or --function");
  }
}

/// Changes the layers of one composition.
class LayerEditor {
 public:
  LayerEditor(const veldra::Library& library, Composition& composition, const Arguments& arguments)
      : library_(library), composition_(composition), arguments_(arguments) {}

  void run() {
    if (arguments_.action == "add") return add();
    if (arguments_.action == "insert") return insert();
    if (arguments_.action == "move") return move();
    if (arguments_.action == "remove") return remove();
    set();
  }

 private:
  const std::string& text(std::size_t at) const { return arguments_.texts[at]; }
  std::size_t count() const { return composition_.layers().size(); }

  void add() { composition_.appendLayer(layer(0)); }

  void insert() {
    const auto at = position(text(0));
    const unsigned structural = composition_.structural_layer();
    const auto inserted = layer(1);
    changing_layers([&] { composition_.insertLayer(at, inserted); });
    settle(composition_.first_core_layer(), composition_.last_core_layer(),
           structural >= at ? structural + 1 : structural);
  }

  void move() {
    const auto from = position(text(0));
    const auto to = position(text(1));
    const unsigned structural = moved_structural(from, to);
    changing_layers([&] { composition_.moveLayer(from, to); });
    settle(composition_.first_core_layer(), composition_.last_core_layer(), structural);
  }

  /// Where the structural layer stands when another one, or it, has been moved.
  unsigned moved_structural(unsigned from, unsigned to) const {
    const unsigned structural = composition_.structural_layer();
    if (structural == from) return to;
    if (from < structural && structural <= to) return structural - 1;
    if (to <= structural && structural < from) return structural + 1;
    return structural;
  }

  /// Another layer carries the loads where the structural one goes. The core has at least one.
  void remove() {
    const auto at = position(text(0));
    const unsigned first = composition_.first_core_layer();
    const unsigned last = composition_.last_core_layer();
    const unsigned structural = composition_.structural_layer();
    const auto moved = [at](unsigned index) { return index > at ? index - 1 : index; };
    changing_layers([&] { composition_.removeLayer(at); });
    settle(moved(first), last == at && last > first ? last - 1 : moved(last), moved(structural));
    if (structural == at && count() > 0) look_for_structure();
  }

  void set() {
    auto& layer = composition_.layer(position(text(0)), veldra::toModify);
    if (arguments_.texts.size() > 1) layer.material(material(text(1)));
    if (arguments_.texts.size() > 2) layer.thickness(thickness(text(2)));
    if (!arguments_.function.empty()) layer.function(function(*layer.material()));
  }

  /// The library moves the indices with the layers, but not always to where they can stay, and the
  /// structural layer not always to the same one: `settle` comes next.
  template <class Change>
  void changing_layers(Change change) {
    try {
      change();
    } catch (const std::out_of_range&) {  // of an index; the layers have changed by then
    }
  }

  void settle(unsigned first, unsigned last, unsigned structural) {
    const unsigned end = static_cast<unsigned>(count());
    last = std::min(last, end == 0 ? 0 : end - 1);
    first = std::min(first, last);
    composition_.structural_layer(composition_.first_core_layer());
    composition_.first_core_layer(0);
    composition_.last_core_layer(last);
    composition_.first_core_layer(first);
    composition_.structural_layer(std::min(std::max(structural, first), last));
  }

  /// The first one of the core that has the function, or else the first one.
  void look_for_structure() {
    const unsigned first = composition_.first_core_layer();
    for (unsigned i = first; i <= composition_.last_core_layer(); ++i) {
      if (composition_.layer(i).function() != Material::Function::Structure) continue;
      return composition_.structural_layer(i);
    }
    composition_.structural_layer(first);
  }

  /// Counted from 1 by people.
  unsigned position(const std::string& text) const {
    const unsigned number = id_in(text);
    if (number >= 1 && number <= count()) return number - 1;
    throw LibraryFailure(fmt::format(
        "{} is no layer of composition {}, which has {}", in_quotes(text),
        in_quotes(composition_.name().utf8()),
        count() == 0 ? std::string("none") : fmt::format("the layers 1 to {}", count())));
  }

  Composition::Layer layer(std::size_t at) const {
    const auto of = material(text(at));
    return {of, function(*of), thickness(text(at + 1))};
  }

  std::shared_ptr<Material> material(const std::string& text) const {
    return find_object<Material>(library_, text);
  }

  double thickness(const std::string& text) const {
    kit::FieldDescription field;
    field.key = "thickness";
    field.kind = kit::Value::Kind::Number;
    field.measure = kit::Measure::Length;
    const auto value = kit::value_from_text(field, text, library_.unit());
    if (value.is_nothing()) throw kit::FieldError("thickness", text, "it cannot be empty");
    return value.as<double>();
  }

  /// That of the material, unless another one is given.
  Material::Function function(const Material& material) const {
    const auto& name = arguments_.function;
    if (name.empty()) return material.function();
    static const kit::Fields<Material> fields;
    const auto value = kit::value_from_text(fields.at("function"), name, library_.unit());
    if (value.is_nothing()) throw kit::FieldError("function", name, "it cannot be empty");
    return static_cast<Material::Function>(value.as<long long>());
  }

  const veldra::Library& library_;
  Composition& composition_;
  const Arguments& arguments_;
};

void print_layers(const veldra::Library& library, unsigned id, Host& host) {
  const auto composition = library.get<Composition>(id);
  if (!composition || composition->layers().empty()) return;
  const auto transmission = kit::transmission_of(*composition, library.unit());
  host.output.print("\n{}", layers_text(*composition, transmission, library.unit()));
}

void edit_layers(const Arguments& arguments, Host& host) {
  require_usage(arguments);
  edit_library(arguments.file, arguments.plan, host, [&](Editing& editing) {
    auto& library = editing.library();
    const auto composition = find_object<Composition>(library, arguments.composition);
    const unsigned id = composition->id();
    LayerEditor(library, *composition, arguments).run();
    editing.change(composition);
    return editing.carry_out([&] { print_layers(library, id, host); });
  });
}

}  // namespace

void add_layers(Host& host) {
  auto& command = *host.arguments.add_subcommand(
      "layers", "Change the layers of a composition, and show them afterwards");
  const auto arguments = std::make_shared<Arguments>();
  add_file(command, arguments->file);
  command
      .add_option("COMPOSITION", arguments->composition,
                  fmt::format("The composition: {}", naming_help))
      ->required()
      ->type_name("");
  const auto known = [](const std::string& text) {
    if (actions().count(text) != 0) return std::string();
    return fmt::format("{} is none of {}", in_quotes(text), action_choices);
  };
  command
      .add_option("ACTION", arguments->action,
                  "add MATERIAL THICKNESS at the inside; insert N MATERIAL THICKNESS before layer "
                  "N; move N M; remove N; set N [MATERIAL [THICKNESS]]. Layers are counted from 1, "
                  "from outside to inside. The structural layer stays the same one as long as it "
                  "is in the core")
      ->required()
      ->check(CLI::Validator(known, "", action_choices))
      ->type_name("");
  command
      .add_option("VALUE", arguments->texts,
                  "What the action takes; a THICKNESS is in the unit of the library, or has one "
                  "behind it, such as \"12 cm\"")
      ->type_name("");
  command
      .add_option("--function", arguments->function,
                  "The function of the layer: none, structure, or a number of the host; by default "
                  "that of the material")
      ->check(some_value())
      ->type_name("F");
  add_backup(command, host);
  add_plan_arguments(command, arguments->plan);
  add_example(command, "veldra layers office.lib 'Cavity wall' insert 2 'Mineral wool' 120");
  command.callback([arguments, &host] { edit_layers(*arguments, host); });
}

}  // namespace veldra_tool
