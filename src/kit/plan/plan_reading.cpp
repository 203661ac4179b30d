// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/plan/plan_reading.hpp"

#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/problem.hpp"
#include "kit/fields/field.hpp"
#include "kit/plan/plan_form.hpp"
#include "kit/text/quoted.hpp"

#include <veldra/kit/kinds.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace veldra::kit {

namespace {

constexpr std::size_t size_of_fingerprint = 64;

bool is_fingerprint(const std::string& text) {
  return text.size() == size_of_fingerprint &&
         text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

/// What messages call an entry, as far as it says what it is about.
std::string called(const JsonNode& node) {
  const JsonNode* kind = node.member("kind");
  if (kind != nullptr && kind->kind == JsonNode::Kind::Text) {
    for (const auto each : {ObjectType::Material, ObjectType::Composition}) {
      if (kind->text() == singular_of(each)) return singular_of(each);
    }
  }
  return "entry";
}

ObjectType kind_of(ObjectReader& reader, const JsonNode& node) {
  const auto name = reader.required_text("kind").utf8();
  for (const auto kind : {ObjectType::Material, ObjectType::Composition}) {
    if (name == singular_of(kind)) return kind;
  }
  reader.fail(node, "'kind' must be \"material\" or \"composition\"");
}

Decision decision_of(ObjectReader& reader, const JsonNode& node) {
  const auto text = reader.required_text("decision").utf8();
  std::vector<std::string> words;
  for (const auto& [decision, word] : plan_form::words) {
    if (text == word) return decision;
    words.emplace_back(word);
  }
  reader.fail(*node.member("decision"), fmt::format("'decision' must be one of {}, and not {}",
                                                    list_of(words), quoted(text)));
}

void read_remarks(ObjectReader& reader) {
  for (const char* remark : {"changes", "clashes", "tags"}) reader.list(remark);
}

}  // namespace

PlanReading::PlanReading(const std::string& file, std::string content)
    : file_(file), document_(parsed(std::move(content))) {}

/// The content goes, as what is made of it takes memory enough.
JsonNode PlanReading::parsed(std::string content) const {
  const auto first = content.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
  if (first == std::string::npos) fail_at(file_, 0, "this is empty");
  if (content[first] != '{') fail_at(file_, 0, "this is no plan");
  return parse_json(content, file_);
}

void PlanReading::read() {
  const JsonNode* form = document_.member("format");
  if (form == nullptr || form->text() != plan_form::name) fail_at(file_, 0, "this is no plan");
  ObjectReader reader(document_, "the plan", file_);
  reader.find("format");
  if (reader.integer("version", 0) != plan_form::version) {
    reader.fail(document_, "its version is not known here");
  }
  read_library(reader);
  if (reader.find("objects") == nullptr) reader.fail(document_, "'objects' is missing");
  if (reader.find("entries") == nullptr) reader.fail(document_, "'entries' is missing");
  reader.finish();
  for (const auto& node : reader.list("entries")) read_entry(node);
  taken("entries");
  read_objects(taken("objects"));
  find_objects();
}

/// A member that is not kept beside what is made of it, which takes more memory.
JsonNode PlanReading::taken(const std::string& name) {
  auto& members = *document_.own_members();
  const auto found = std::find_if(members.begin(), members.end(),
                                  [&](const auto& member) { return member.name.text() == name; });
  return std::exchange(found->value, JsonNode());
}

void PlanReading::read_library(ObjectReader& reader) {
  const JsonNode* node = reader.find("library");
  if (node == nullptr) reader.fail(document_, "'library' is missing");
  ObjectReader library(*node, "the library", file_);
  path = library.required_text("path").utf8();
  guid = library.required_text("guid");
  library.finish();
}

void PlanReading::read_entry(const JsonNode& node) {
  auto reader = ObjectReader::of_kind(node, called(node), file_);
  PlanFileEntry entry;
  entry.line = node.line;
  entry.object.type = kind_of(reader, node);
  entry.name = reader.required_text("name").utf8();
  entry.decision = decision_of(reader, node);
  if (reader.find("new_name")) entry.new_name = reader.required_text("new_name").utf8();
  if (reader.find("stored_name")) entry.stored_name = reader.required_text("stored_name").utf8();
  if (reader.find("state_of")) entry.state_of = reader.required_text("state_of").utf8();
  const auto fingerprint = reader.required_text("fingerprint").utf8();
  if (fingerprint != plan_form::absent && !is_fingerprint(fingerprint)) {
    reader.fail(*node.member("fingerprint"),
                "'fingerprint' must be \"absent\" or 64 hexadecimal digits");
  }
  if (fingerprint != plan_form::absent) entry.fingerprint = fingerprint;
  entry.ignores_case = reader.boolean("ignores_case", false);
  read_remarks(reader);
  reader.finish();
  require_sense(entry, reader, *node.member("decision"));
  entries.push_back(std::move(entry));
}

/// What can be decided depends on whether something is stored.
void PlanReading::require_sense(const PlanFileEntry& entry, const ObjectReader& reader,
                                const JsonNode& node) {
  const auto decision = entry.decision;
  if (decision == Decision::Undecided) return;
  const auto word = plan_form::word_of(decision);
  if (!entry.fingerprint.empty()) {
    if (decision != Decision::Add) return;
    reader.fail(node, "'add' makes no sense, as the library has one of that name already");
  }
  if (decision == Decision::Add) return;
  if (decision != Decision::Rename) {
    reader.fail(node, fmt::format("'{}' makes no sense, as the library has none of that name; it "
                                  "can be 'add' or 'rename'",
                                  word));
  }
  if (entry.new_name.empty()) {
    reader.fail(node, "'new_name' is missing, which says under which name it comes in");
  }
}

void PlanReading::read_objects(JsonNode node) {
  const unsigned line = node.line;
  FileContent content{file_, "", std::move(node)};
  const auto reader = catalogue_module();
  if (!reader.recognises(content)) {
    fail_at(file_, line, "'objects' must be the contents of a library as JSON");
  }
  const auto read = reader.read(std::move(content));
  SourceRules rules;
  rules.unit = read->unit().value_or(rules.unit);
  sources_ = read_together({NamedContent{file_, reader.format, *read, true}}, rules);
  require_all_objects();
}

/// A plan is for all that its source held.
void PlanReading::require_all_objects() const {
  const auto& report = sources_.reports.front();
  for (const auto& problem : report.problems) {
    if (!problem.doubt) throw SourceError(problem);
  }
  if (report.repeated.empty()) return;
  const auto& twice = report.repeated.front();
  fail_at(
      file_, twice.line,
      fmt::format("the {} {} is there twice", singular_of(twice.object.type), quoted(twice.name)),
      twice.name);
}

void PlanReading::find_objects() {
  Keys wanted = object_keys();
  for (auto& entry : entries) {
    const auto called = fmt::format("{} {}", singular_of(entry.object.type), quoted(entry.name));
    const auto found = wanted.find({entry.object.type, entry.name});
    if (found == wanted.end()) {
      fail_at(file_, entry.line, fmt::format("{}: there is no such object in 'objects'", called),
              entry.name);
    }
    if (found->second == 0) {
      fail_at(file_, entry.line, fmt::format("{}: there are two entries for it", called),
              entry.name);
    }
    entry.object.id = std::exchange(found->second, 0);
  }
  for (const auto& [key, id] : wanted) {
    if (id == 0) continue;
    fail_at(
        file_, 0,
        fmt::format("there is no entry for the {} {}", singular_of(key.first), quoted(key.second)),
        key.second);
  }
  std::sort(entries.begin(), entries.end(), is_before);
}

/// The order of the entries of a plan.
bool PlanReading::is_before(const PlanFileEntry& left, const PlanFileEntry& right) {
  const bool is_material = left.object.type == ObjectType::Material;
  if (left.object.type != right.object.type) return is_material;
  return left.object.id < right.object.id;
}

PlanReading::Keys PlanReading::object_keys() const {
  Keys keys;
  const auto add = [&](ObjectType kind, const std::map<unsigned, String>& names) {
    for (const auto& [id, name] : names) keys.emplace(std::make_pair(kind, name.utf8()), id);
  };
  add(ObjectType::Material, source()->names<Material>());
  add(ObjectType::Composition, source()->names<Composition>());
  return keys;
}

}  // namespace veldra::kit
