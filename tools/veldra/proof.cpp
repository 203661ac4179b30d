// SPDX-License-Identifier: GPL-2.0-or-later
#include "proof.hpp"

#include "arguments.hpp"
#include "failure.hpp"
#include "files/reading.hpp"
#include "kinds.hpp"
#include "physics_text.hpp"
#include "process/standard_streams.hpp"
#include "process/writing.hpp"
#include "summary.hpp"
#include "table.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <cmath>

namespace veldra_tool {

namespace {

constexpr std::size_t most_bytes_of_climate = 1'000'000;

constexpr const char* months[] = {"January",   "February", "March",    "April",
                                  "May",       "June",     "July",     "August",
                                  "September", "October",  "November", "December"};

/// Prints the parts of a proof one after the other.
class Printer {
 public:
  Printer(Spool& output, const Proof& proof, const veldra::Composition& composition,
          veldra::Unit unit)
      : output_(output), proof_(proof), composition_(composition), unit_(unit) {}

  void print() const {
    output_.print("{}\n\n", printable(composition_.name().utf8()));
    print_layers();
    print_heat();
    print_storage();
    print_diffusion();
    if (proof_.moisture) print_moisture();
    if (proof_.solution) print_solution();
  }

 private:
  void line(const std::string& title, const std::string& value) const {
    if (!value.empty()) output_.print("{}\n", line_of(title, value));
  }

  void muted_line(const std::string& title, const std::string& value) const {
    if (!value.empty()) output_.print("{}\n", muted(line_of(title, value)));
  }

  static std::string line_of(const std::string& title, const std::string& value) {
    const auto width = display_width(title);
    return title + std::string(width < 24 ? 24 - width : 1, ' ') + printable(value);
  }

  void lines(const std::string& title, const std::vector<std::string>& values) const {
    for (const auto& value : values) line(title, value);
  }

  std::string vapour_text(std::size_t index) const {
    const auto& each = proof_.diffusion.layers[index];
    return each && index >= proof_.heat.ventilated ? rounded_number(*each, 3) : "–";
  }

  void print_layers() const {
    Table table({{"layer", Align::Right},
                 {"material"},
                 {fmt::format("d [{}]", name_of(unit_)), Align::Right},
                 {"λ [W/(m K)]", Align::Right},
                 {"R [m²K/W]", Align::Right},
                 {"R from"},
                 {"s_d [m]", Align::Right}});
    for (std::size_t i = 0; i < proof_.heat.layers.size(); ++i) {
      const auto& layer = composition_.layers()[i];
      const auto& heat = proof_.heat.layers[i];
      table.add({fmt::format("{}", i + 1), layer.material() ? layer.material()->name().utf8() : "",
                 length_text(layer.thickness(), unit_),
                 heat.conductivity ? rounded_number(*heat.conductivity, 4) : "–",
                 resistance_text(proof_.heat, i), basis_text(heat), vapour_text(i)});
      if (heat.bridge) add_bridge(table, heat, proof_.diffusion.bridges[i]);
    }
    output_.print("{}\n", table.text(terminal_width()));
  }

  static void add_bridge(Table& table, const kit::LayerHeat& heat, std::optional<double> vapour) {
    const auto name = heat.bridge_name.empty() ? "bridge" : heat.bridge_name;
    table.add({"", fmt::format("  {}, {} %", name, rounded_number(heat.bridge->share * 100, 2)), "",
               rounded_number(heat.bridge_conductivity, 4),
               fixed_number(heat.bridge->resistance, 3), "d / λ",
               vapour ? rounded_number(*vapour, 3) : "–"});
  }

  void print_heat() const {
    line("surfaces", surfaces_text(proof_.heat));
    muted_line("assumed", assumption_text(proof_.heat));
    if (proof_.heat.limits && proof_.heat.bridged) {
      line("limits of R_T", fmt::format("{:.3f} and {:.3f} m²K/W, error at most {:.1f} % "
                                        "(ISO 6946, 6.7.2)",
                                        proof_.heat.limits->upper, proof_.heat.limits->lower,
                                        proof_.heat.limits->error() * 100));
    }
    lines("note", proof_.heat.notes);
    if (const auto total = proof_.heat.total_resistance()) {
      line("resistance R_T", fmt::format("{:.3f} m²K/W with surfaces", *total));
      for (const auto& correction : proof_.heat.corrections) {
        line("correction", fmt::format("{:.4f} W/(m²K) for {}", correction.value, correction.name));
      }
      line("transmittance U", fmt::format("{:.3f} W/(m²K)", *proof_.heat.transmittance()));
    }
    lines("no U-value", proof_.heat.faults);
  }

  void print_storage() const {
    if (proof_.storage.mass) line("mass", fmt::format("{:.1f} kg/m²", *proof_.storage.mass));
    lines("no mass", proof_.storage.mass_faults);
    if (const auto& storage = proof_.storage.storage) {
      line("heat capacity",
           fmt::format("κ {:.1f} kJ/(m²K) inside, {:.1f} outside (ISO 13786, 24 h)",
                       storage->inside / 1000, storage->outside / 1000));
      line("periodic transmittance",
           fmt::format("{:.4f} W/(m²K), decrement {:.3f}, time shift {:.1f} h",
                       storage->periodic_transmittance, storage->decrement, storage->time_shift));
    }
    if (proof_.heat.faults.empty()) lines("no heat capacity", proof_.storage.faults);
  }

  void print_diffusion() const {
    if (proof_.diffusion.total) line("s_d", fmt::format("{:.2f} m", *proof_.diffusion.total));
    lines("no s_d", proof_.diffusion.faults);
  }

  void print_moisture() const {
    const auto& moisture = *proof_.moisture;
    if (const auto& surface = moisture.surface) {
      line("surface factor f_Rsi",
           fmt::format("{:.3f}, needed {:.3f} in {} (ISO 13788, 5): {}", surface->factor,
                       surface->required[surface->critical], months[surface->critical],
                       surface->safe() ? "no mould" : "mould may grow"));
    }
    lines("note", moisture.notes);
    if (moisture.year) print_year(*moisture.year);
    if (!moisture.year) lines("no moisture figure", moisture.faults);
  }

  void print_year(const kit::physics::MoistureYear& year) const {
    if (!year.condenses) return line("condensation", "none in any month (ISO 13788, 6)");
    const auto amount = year.dries ? "at most {:.3f} kg/m²; all of it dries within the year"
                                   : "{:.3f} kg/m² in the first year, and more in each; it does "
                                     "not dry within the year";
    line("condensation", fmt::format(fmt::runtime(amount), year.greatest) + " (ISO 13788, 6)");
    Table table({{"month"}, {"condensed [kg/m²]", Align::Right}, {"in all [kg/m²]", Align::Right}});
    for (const auto& month : year.months) {
      double condensed = 0;
      for (const double each : month.condensed) condensed += each;
      table.add({months[month.month], fmt::format("{:.3f}", condensed == 0 ? 0.0 : condensed),
                 fmt::format("{:.3f}", month.total())});
    }
    output_.print("\n{}\n", table.text(terminal_width()));
  }

  void print_solution() const {
    const auto& solution = *proof_.solution;
    if (!solution.thickness) return line("thickness", solution.fault);
    line("thickness", fmt::format("{} {} of layer {} give {:.3f} W/(m²K)",
                                  rounded_number(*solution.thickness, 2), name_of(unit_),
                                  solution.layer + 1, *solution.transmittance));
  }

  Spool& output_;
  const Proof& proof_;
  const veldra::Composition& composition_;
  veldra::Unit unit_;
};

Json optional_number(const std::optional<double>& number) {
  return number ? number_to_json(*number) : Json();
}

Json storage_json(const kit::CompositionStorage& storage) {
  Json json = Json::object();
  json["mass"] = optional_number(storage.mass);
  json["mass_faults"] = storage.mass_faults;
  json["faults"] = storage.faults;
  if (!storage.storage) return json;
  json["kappa_inside"] = number_to_json(storage.storage->inside / 1000);
  json["kappa_outside"] = number_to_json(storage.storage->outside / 1000);
  json["periodic_transmittance"] = number_to_json(storage.storage->periodic_transmittance);
  json["decrement"] = number_to_json(storage.storage->decrement);
  json["time_shift"] = number_to_json(storage.storage->time_shift);
  return json;
}

Json diffusion_json(const kit::Diffusion& diffusion) {
  Json json = Json::object();
  json["sd"] = optional_number(diffusion.total);
  json["layers"] = Json::array();
  for (const auto& each : diffusion.layers) json["layers"].push_back(optional_number(each));
  json["faults"] = diffusion.faults;
  return json;
}

Json place_json(const kit::physics::MoisturePlace& place, double condensed, double accumulated) {
  Json json = Json::object();
  json["layer"] = place.layer + 1;
  json["part"] = number_to_json(place.part);
  json["condensed"] = number_to_json(condensed);
  json["accumulated"] = number_to_json(accumulated);
  return json;
}

Json year_json(const kit::physics::MoistureYear& year) {
  Json json = Json::object();
  json["condenses"] = year.condenses;
  json["dries"] = year.dries;
  json["greatest"] = number_to_json(year.greatest);
  json["months"] = Json::array();
  for (const auto& month : year.months) {
    Json each = Json::object();
    each["month"] = month.month + 1;
    each["accumulated"] = number_to_json(month.total());
    each["places"] = Json::array();
    for (std::size_t i = 0; i < year.places.size(); ++i) {
      if (month.condensed[i] == 0 && month.accumulated[i] == 0) continue;
      each["places"].push_back(
          place_json(year.places[i], month.condensed[i], month.accumulated[i]));
    }
    json["months"].push_back(each);
  }
  return json;
}

Json moisture_json(const kit::CompositionMoisture& moisture) {
  Json json = Json::object();
  if (moisture.surface) {
    json["surface_factor"] = number_to_json(moisture.surface->factor);
    json["required_factors"] = moisture.surface->required;
    json["critical_month"] = moisture.surface->critical + 1;
    json["safe"] = moisture.surface->safe();
  }
  if (moisture.year) json["year"] = year_json(*moisture.year);
  json["notes"] = moisture.notes;
  json["faults"] = moisture.faults;
  return json;
}

Json solution_json(const kit::ThicknessSolution& solution) {
  Json json = Json::object();
  json["layer"] = solution.layer + 1;
  json["thickness"] = optional_number(solution.thickness);
  json["transmittance"] = optional_number(solution.transmittance);
  json["fault"] = solution.fault;
  return json;
}

}  // namespace

void add_climate(CLI::App& command, ProofWishes& wishes) {
  command
      .add_option("--boundary", wishes.boundary,
                  "What is outside and then inside (outdoors, ventilated, ground, interior, "
                  "unheated) and where heat flows (horizontal, upward, downward), with commas "
                  "between them; goes before what a build-up states")
      ->check(some_value())
      ->type_name("WORDS");
  command
      .add_option("--climate", wishes.climate,
                  "A table (CSV) of the year's climate, for condensation and mould")
      ->check(some_value())
      ->type_name("FILE");
  command
      .add_option("--room-class", wishes.room_class,
                  "The room class, 1 (dry) to 5 (wet), where the climate has no humidity inside")
      ->type_name("CLASS");
}

void add_proof_wishes(CLI::App& command, ProofWishes& wishes) {
  add_climate(command, wishes);
  command
      .add_option("--target-u", wishes.target,
                  "Find the thickness of the variable layer with which U is at most this")
      ->type_name("U");
  command
      .add_option("--layer", wishes.layer,
                  "Find that of this layer instead, counted from 1 from the outside")
      ->type_name("LAYER");
}

ProofRequest read_wishes(const ProofWishes& wishes) {
  if (wishes.layer && !wishes.target) {
    throw CLI::ValidationError("--layer", "it says for which layer --target-u is meant");
  }
  if (wishes.layer && *wishes.layer == 0) {
    throw CLI::ValidationError("--layer", "layers are counted from 1");
  }
  if (wishes.target && !(*wishes.target > 0 && std::isfinite(*wishes.target))) {
    throw CLI::ValidationError("--target-u", "a U-value is a number above 0");
  }
  if (wishes.room_class && (*wishes.room_class < 1 || *wishes.room_class > 5)) {
    throw CLI::ValidationError("--room-class", "room classes are from 1 to 5");
  }
  if (wishes.room_class && wishes.climate.empty()) {
    throw CLI::ValidationError("--room-class", "it says more of a --climate");
  }
  ProofRequest request;
  request.target = wishes.target;
  if (wishes.layer) request.layer = *wishes.layer - 1;
  try {
    request.boundary = kit::physics::boundary_statement(wishes.boundary);
  } catch (const kit::Error& error) {
    throw CLI::ValidationError("--boundary", error.what());
  }
  if (wishes.climate.empty()) return request;
  const auto text = content_of(wishes.climate, most_bytes_of_climate);
  try {
    request.climate = kit::climate_from_csv(text, wishes.room_class);
  } catch (const kit::Error& error) {
    throw Failure(fmt::format("{}: {}", in_quotes(wishes.climate), error.what()));
  }
  return request;
}

bool Proof::is_complete() const {
  if (!heat.transmittance() || has_wrong_values) return false;
  if (moisture && !moisture->year) return false;
  return !solution || solution->thickness;
}

Proof proof_of(const veldra::Composition& composition, veldra::Unit unit,
               const ProofRequest& request) {
  Proof proof;
  proof.heat = kit::transmission_of(composition, unit, request.boundary);
  proof.diffusion = kit::diffusion_of(composition, unit);
  proof.storage = kit::storage_of(composition, unit, request.boundary);
  for (const auto& layer : composition.layers()) {
    const auto& material = layer.material();
    proof.has_wrong_values |= material && !kit::KnownValues(*material).faults().empty();
  }
  if (request.climate) {
    proof.moisture = kit::moisture_of(composition, unit, *request.climate, request.boundary);
  }
  if (request.target) {
    proof.solution =
        kit::thickness_for(composition, unit, *request.target, request.layer, request.boundary);
  }
  return proof;
}

void print_proof(Spool& output, const Proof& proof, const veldra::Composition& composition,
                 veldra::Unit unit) {
  Printer(output, proof, composition, unit).print();
}

Json proof_json(const Proof& proof, const veldra::Composition& composition) {
  Json json = Json::object();
  json["id"] = composition.id();
  json["name"] = composition.name().utf8();
  json["total_thickness"] = number_to_json(kit::total_thickness(composition));
  json["thermal"] = transmission_json(proof.heat);
  json["storage"] = storage_json(proof.storage);
  json["diffusion"] = diffusion_json(proof.diffusion);
  if (proof.moisture) json["moisture"] = moisture_json(*proof.moisture);
  if (proof.solution) json["solution"] = solution_json(*proof.solution);
  return json;
}

}  // namespace veldra_tool
