// SPDX-License-Identifier: GPL-2.0-or-later
#include "import/report.hpp"

#include "failure.hpp"
#include "kinds.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace veldra_tool {

namespace {

unsigned count_of(const std::map<kit::Decision, unsigned>& counts, kit::Decision decision) {
  const auto found = counts.find(decision);
  return found != counts.end() ? found->second : 0;
}

Json outcomes_to_json(const std::map<kit::Decision, unsigned>& counts) {
  Json json = Json::object();
  for (const auto decision : all_decisions()) json[name_of(decision)] = count_of(counts, decision);
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

/// Members as the properties would be called if the values were kept.
Json dropped_to_json(const kit::SourceReport& report) {
  Json json = Json::object();
  for (const auto& field : kit::fields_not_kept(report)) {
    json[field.object_class + "." + field.field] = field.count;
  }
  return json;
}

std::string counts_text(const std::map<std::string, unsigned>& counts) {
  std::string text;
  for (const auto& [name, count] : counts) {
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, printable(name));
  }
  return text.empty() ? "nothing" : text;
}

std::string outcomes_text(const std::map<kit::Decision, unsigned>& counts) {
  std::string text;
  for (const auto decision : all_decisions()) {
    const unsigned count = count_of(counts, decision);
    if (count == 0) continue;
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, name_of(decision));
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

kit::Decision decision_of(kit::Repetition repetition) {
  switch (repetition) {
    case kit::Repetition::Used:
      return kit::Decision::Keep;
    case kit::Repetition::Overwrote:
      return kit::Decision::Change;
    default:
      return kit::Decision::Equal;
  }
}

Json repeated_to_json(const kit::RepeatedObject& repeated) {
  Json json = Json::object();
  json["kind"] = singular_of(repeated.object.type);
  json["name"] = repeated.name;
  json["outcome"] = name_of(decision_of(repeated.what));
  json["repeated"] = true;
  return json;
}

}  // namespace

ImportReport::ImportReport(const kit::Sources& sources, const kit::Plan& plan)
    : sources_(sources), plan_(plan) {
  for (const auto& found : sources.reports) of_sources_.push_back({&found, {}, {}, {}});
  count_repeated();
  for (const auto& entry : plan.entries()) count(entry);
}

ImportReport::Counts& ImportReport::counts_of(veldra::ObjectType kind, OfSource& source) {
  return kind == veldra::ObjectType::Material ? source.materials : source.compositions;
}

void ImportReport::count_repeated() {
  for (auto& source : of_sources_) {
    for (const auto& repeated : source.found->repeated) {
      ++counts_of(repeated.object.type, source)[decision_of(repeated.what)];
    }
  }
}

/// One that was renamed because of another source comes in under a name that only the source lacks.
void ImportReport::count(const kit::PlanEntry& entry) {
  const auto origin = sources_.origins.find(entry.source);
  if (origin == sources_.origins.end()) {
    if (entry.decision == kit::Decision::Add) made_.push_back(&entry);
    return;
  }
  auto& source = of_sources_[origin->second.source];
  const bool renamed = entry.decision == kit::Decision::Add && origin->second.renamed;
  ++counts_of(entry.source.type, source)[renamed ? kit::Decision::Rename : entry.decision];
  source.entries.push_back(&entry);
}

Json ImportReport::json(const veldra::IdMapping& mapping) const {
  Json list = Json::array();
  for (const auto& source : of_sources_) list.push_back(json_of_source(source, mapping));
  // Several sources may share them, which are made once.
  list.front()["made"] = json_of(made_, mapping, *plan_.source());
  return list;
}

Json ImportReport::json_of_source(const OfSource& source, const veldra::IdMapping& mapping) const {
  const auto& report = *source.found;
  Json json = Json::object();
  json["file"] = in_utf8(report.file);
  json["format"] = report.format;
  json["read"] = counts_to_json(report.read);
  json["skipped"] = counts_to_json(report.skipped);
  json["dropped"] = dropped_to_json(report);
  json["materials"] = outcomes_to_json(source.materials);
  json["compositions"] = outcomes_to_json(source.compositions);
  json["layers"] = report.layers;
  json["layers_without_thickness"] = report.layers_without_thickness;
  json["references_not_found"] = report.references_not_found;
  json["problems"] = problems_to_json(report.problems);
  json["objects"] = json_of(source.entries, mapping, *plan_.source());
  for (const auto& repeated : report.repeated) {
    json["objects"].push_back(repeated_to_json(repeated));
  }
  return json;
}

std::string ImportReport::text(bool verbose) const {
  std::string text;
  PlanEntries entries;
  for (const auto& source : of_sources_) {
    text += text_of_source(source);
    entries.insert(entries.end(), source.entries.begin(), source.entries.end());
  }
  text += text_of_made(verbose);
  const bool told = verbose || entries.size() <= few_objects;
  return told && !entries.empty() ? text + text_of(entries, true) : text;
}

std::string ImportReport::text_of_made(bool verbose) const {
  std::string text;
  for (const auto kind : all_kinds()) {
    std::vector<std::string> names;
    for (const auto* entry : made_) {
      if (entry->source.type == kind) names.push_back(printable(entry->name));
    }
    if (names.empty()) continue;
    const auto told = verbose ? names.size() : std::min(names.size(), few_objects);
    text += fmt::format(
        "  {:<13} {}{}\n", plural_of(kind),
        fmt::join(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(told), ", "),
        told == names.size() ? "" : fmt::format(" and {} more", names.size() - told));
  }
  return text.empty() ? "" : "made in the library\n" + text;
}

std::string ImportReport::text_of_source(const OfSource& source) {
  const auto& report = *source.found;
  std::string text = fmt::format("{} ({})\n", in_quotes(report.file), report.format);
  text += fmt::format("  read          {}\n", counts_text(report.read));
  text += fmt::format("  materials     {}\n", outcomes_text(source.materials));
  text += fmt::format("  compositions  {}\n", outcomes_text(source.compositions));
  text += fmt::format("  layers        {}, {} without thickness, {} without a known material\n",
                      report.layers, report.layers_without_thickness, report.references_not_found);
  if (!report.not_kept.empty()) {
    text += fmt::format("  dropped       {} values of {} fields\n", report.not_kept.size(),
                        kit::fields_not_kept(report).size());
  }
  if (!report.skipped.empty()) text += fmt::format("  skipped       {}\n", skipped_text(report));
  return text;
}

}  // namespace veldra_tool
