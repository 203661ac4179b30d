// SPDX-License-Identifier: GPL-2.0-or-later
#include "import/report.hpp"

#include "failure.hpp"
#include "text.hpp"

#include <fmt/format.h>

namespace veldra_tool {

namespace {

constexpr Outcome all_outcomes[] = {Outcome::Added, Outcome::Equal, Outcome::Kept, Outcome::Changed,
                                    Outcome::Renamed};

unsigned count_of(const std::map<Outcome, unsigned>& counts, Outcome outcome) {
  const auto found = counts.find(outcome);
  return found != counts.end() ? found->second : 0;
}

Json outcomes_to_json(const std::map<Outcome, unsigned>& counts) {
  Json json = Json::object();
  for (const auto outcome : all_outcomes) json[name_of(outcome)] = count_of(counts, outcome);
  return json;
}

Json counts_to_json(const std::map<std::string, unsigned>& counts) {
  Json json = Json::object();
  for (const auto& [name, count] : counts) json[name] = count;
  return json;
}

Json problems_to_json(const std::vector<kit::SourceProblem>& problems) {
  Json json = Json::array();
  for (const auto& problem : problems) json.push_back(printable(problem.text()));
  return json;
}

Json to_json(const ImportedSource& source) {
  const auto& report = source.found;
  Json json = Json::object();
  json["file"] = in_utf8(report.file);
  json["format"] = report.format;
  json["read"] = counts_to_json(report.read);
  json["skipped"] = counts_to_json(report.skipped);
  json["dropped"] = counts_to_json(dropped_in(report));
  json["materials"] = outcomes_to_json(source.materials);
  json["compositions"] = outcomes_to_json(source.compositions);
  json["layers"] = report.layers;
  json["layers_without_thickness"] = report.layers_without_thickness;
  json["references_not_found"] = report.references_not_found;
  json["problems"] = problems_to_json(report.problems);
  return json;
}

std::string counts_text(const std::map<std::string, unsigned>& counts) {
  std::string text;
  for (const auto& [name, count] : counts) {
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, printable(name));
  }
  return text.empty() ? "nothing" : text;
}

std::string outcomes_text(const std::map<Outcome, unsigned>& counts) {
  std::string text;
  for (const auto outcome : all_outcomes) {
    const unsigned count = count_of(counts, outcome);
    if (count == 0) continue;
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, name_of(outcome));
  }
  return text.empty() ? "none" : text;
}

/// A model of a building has objects of many classes that no library has a place for.
std::string skipped_text(const kit::SourceReport& report) {
  constexpr std::size_t many = 4;
  if (report.skipped.size() <= many) return counts_text(report.skipped);
  unsigned objects = 0;
  for (const auto& [name, count] : report.skipped) objects += count;
  return fmt::format("{} objects of {} classes", objects, report.skipped.size());
}

std::string text_of(const ImportedSource& source) {
  const auto& report = source.found;
  std::string text = fmt::format("{} ({})\n", in_quotes(report.file), report.format);
  text += fmt::format("  read          {}\n", counts_text(report.read));
  text += fmt::format("  materials     {}\n", outcomes_text(source.materials));
  text += fmt::format("  compositions  {}\n", outcomes_text(source.compositions));
  text += fmt::format("  layers        {}, {} without thickness, {} without a known material\n",
                      report.layers, report.layers_without_thickness, report.references_not_found);
  const auto dropped = dropped_in(report);
  if (!dropped.empty()) text += fmt::format("  dropped       {}\n", counts_text(dropped));
  if (!report.skipped.empty()) text += fmt::format("  skipped       {}\n", skipped_text(report));
  return text;
}

}  // namespace

std::map<std::string, unsigned> dropped_in(const kit::SourceReport& source) {
  std::map<std::string, unsigned> dropped;
  for (const auto& entry : source.not_kept) {
    const bool asset = entry.object_class == "material";
    ++dropped[asset ? "assets" : fmt::format("fields of {}", entry.object_class)];
  }
  return dropped;
}

std::string name_of(Outcome outcome) {
  switch (outcome) {
    case Outcome::Added:
      return "added";
    case Outcome::Equal:
      return "equal";
    case Outcome::Kept:
      return "kept";
    case Outcome::Changed:
      return "changed";
    default:
      return "renamed";
  }
}

Json to_json(const ImportReport& report) {
  Json json = Json::array();
  for (const auto& source : report) json.push_back(to_json(source));
  return json;
}

std::string text_of(const ImportReport& report) {
  std::string text;
  for (const auto& source : report) text += text_of(source);
  return text;
}

}  // namespace veldra_tool
