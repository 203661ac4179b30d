// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/plan_file.hpp>

#include "kit/exchange/json_objects.hpp"
#include "kit/plan/plan_form.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace veldra::kit {

namespace {

Json json_of_changes(const PlanEntry& entry) {
  Json list = Json::array();
  for (const auto& change : entry.changes) {
    Json json = Json::object();
    json["field"] = change.field;
    json["old"] = json_from(change.before);
    json["new"] = json_from(change.after);
    list.push_back(std::move(json));
  }
  return list;
}

Json json_of_clashes(const PlanEntry& entry) {
  Json list = Json::array();
  for (const auto& clash : entry.clashes) {
    Json json = Json::object();
    json["same"] = name_of(clash.with);
    json["name"] = clash.name;
    if (!clash.code.empty()) json["code"] = clash.code;
    list.push_back(std::move(json));
  }
  return list;
}

/// Writes text whose lines, but for the first, stand behind so many blanks.
class Indented {
 public:
  Indented(const TextSink& sink, std::size_t blanks)
      : sink_(sink), line_break_("\n" + std::string(blanks, ' ')) {}

  /// The end of a line is written when something comes behind it.
  void write(std::string_view part) {
    std::string text;
    for (const char character : part) {
      if (pending_) text += line_break_;
      pending_ = character == '\n';
      if (!pending_) text += character;
    }
    sink_(text);
  }

 private:
  const TextSink& sink_;
  std::string line_break_;
  bool pending_ = false;
};

class PlanWriter {
 public:
  PlanWriter(const Plan& plan, const Library& destination, const TextSink& sink)
      : plan_(plan), destination_(destination), sink_(sink) {}

  void write(const std::string& path, const Progress& progress) {
    Json library = Json::object();
    library["path"] = path;
    library["guid"] = destination_.guid().utf8();
    sink_("{\n  \"format\": \"" + std::string(plan_form::name) +
          "\",\n  \"version\": " + std::to_string(plan_form::version) +
          ",\n  \"library\": " + without_controls_in_json(library.dump()) + ",\n  \"entries\": [");
    write_entries();
    sink_("],\n  \"objects\": ");
    Indented objects(sink_, 2);
    write_json(
        *plan_.source(), [&](std::string_view part) { objects.write(part); }, progress);
    sink_("\n}\n");
  }

 private:
  void write_entries() {
    bool is_first = true;
    for (const auto& entry : plan_.entries()) {
      if (!plan_form::has_entry(entry.source.type)) continue;
      sink_(is_first ? "\n    " : ",\n    ");
      is_first = false;
      Indented(sink_, 4).write(without_controls_in_json(json_of(entry).dump(2)));
    }
    if (!is_first) sink_("\n  ");
  }

  Json json_of(const PlanEntry& entry) const {
    Json json = Json::object();
    json["kind"] = singular_of(entry.source.type);
    json["name"] = entry.name;
    json["decision"] = plan_form::word_of(entry.decision);
    if (entry.decision == Decision::Rename) json["new_name"] = entry.result;
    if (is_state(entry)) json["state_of"] = stored_name_of(entry);
    add_stored(json, entry);
    if (ignores_case(entry)) json["ignores_case"] = true;
    if (!entry.changes.empty()) json["changes"] = json_of_changes(entry);
    if (!entry.clashes.empty()) json["clashes"] = json_of_clashes(entry);
    if (!entry.tags.empty()) json["tags"] = entry.tags;
    return json;
  }

  void add_stored(Json& json, const PlanEntry& entry) const {
    const bool is_result = entry.decision != Decision::Rename && entry.result != entry.name;
    if (entry.stored != 0 && is_result) json["stored_name"] = entry.result;
    json["fingerprint"] = entry.fingerprint.empty() ? plan_form::absent : entry.fingerprint;
  }

  bool is_state(const PlanEntry& entry) const {
    return plan_.rules().states_of.count(entry.source) != 0;
  }

  static std::string stored_name_of(const PlanEntry& entry) {
    for (const auto& change : entry.changes) {
      if (change.field == "name") return value_text(change.before);
    }
    return entry.name;
  }

  bool ignores_case(const PlanEntry& entry) const {
    const auto& rule = plan_.rules().ignores_case;
    return rule && rule(entry.source);
  }

  const Plan& plan_;
  const Library& destination_;
  const TextSink& sink_;
};

}  // namespace

void write_plan(const Plan& plan, const Library& destination, const std::string& path,
                const TextSink& sink, const Progress& progress) {
  if (!plan.rules().fingerprints) throw PlanError("the plan was made without fingerprints");
  PlanWriter(plan, destination, sink).write(path, progress);
}

}  // namespace veldra::kit
