// SPDX-License-Identifier: GPL-2.0-or-later
#include "planned_change.hpp"

#include "arguments.hpp"
#include "failure.hpp"
#include "kinds.hpp"
#include "lookup.hpp"
#include "progress.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace veldra_tool {

namespace {

const std::map<std::string, kit::OnClash>& policies_by_name() {
  static const std::map<std::string, kit::OnClash> policies{{"fail", kit::OnClash::Fail},
                                                            {"use", kit::OnClash::Use},
                                                            {"overwrite", kit::OnClash::Overwrite},
                                                            {"rename", kit::OnClash::Rename}};
  return policies;
}

constexpr const char* policy_names = "fail, use, overwrite, rename";

/// What one of the texts says: to which objects it applies, empty for all, and the policy.
struct Policy {
  std::string objects;
  kit::OnClash on_clash;
};

/// The policy stands behind the last "=", as names may have one.
Policy policy_in(const std::string& text) {
  const auto equals = text.rfind('=');
  const bool general = equals == std::string::npos;
  const auto name = kit::lower_case(general ? text : text.substr(equals + 1));
  const auto found = policies_by_name().find(name);
  if (found == policies_by_name().end()) {
    throw CLI::ValidationError(
        "--on-conflict",
        fmt::format("{} is none of {}", in_quotes(general ? text : name), policy_names));
  }
  return {general ? std::string() : text.substr(0, equals), found->second};
}

bool can_clash(veldra::ObjectType kind) {
  return kind == veldra::ObjectType::Material || kind == veldra::ObjectType::Composition;
}

veldra::ObjectType kind_in(const std::string& objects) {
  const auto kind = kinds_by_name().find(objects.substr(0, objects.find(':')));
  if (kind != kinds_by_name().end() && can_clash(kind->second)) return kind->second;
  throw CLI::ValidationError(
      "--on-conflict",
      fmt::format("{} is neither material nor composition, nor one of these as KIND:OBJECT",
                  in_quotes(objects)));
}

/// The library of the sources is none that anybody knows of.
veldra::ObjectKey key_in_sources(const veldra::Library& source, veldra::ObjectType kind,
                                 const std::string& text) {
  try {
    return object_key(source, kind, text);
  } catch (const LibraryFailure& failure) {
    throw Failure(fmt::format("--on-conflict: {}", failure.what()));
  }
}

void enter(const Policy& policy, const veldra::Library& source, kit::PlanRules& rules) {
  if (policy.objects.empty()) {
    rules.on_clash = policy.on_clash;
    return;
  }
  const auto kind = kind_in(policy.objects);
  const auto colon = policy.objects.find(':');
  if (colon == std::string::npos) {
    rules.for_kind[kind] = policy.on_clash;
    return;
  }
  rules.for_object[key_in_sources(source, kind, policy.objects.substr(colon + 1))] =
      policy.on_clash;
}

/// The report goes there.
CLI::Validator no_standard_output() {
  return {[](const std::string& file) {
            return file == "-" ? std::string("standard output gets the report; give a file") : "";
          },
          ""};
}

}  // namespace

void add_plan_arguments(CLI::App& command, PlanArguments& arguments) {
  command.add_flag("--dry-run", arguments.dry_run, "Tell what would happen, and write nothing");
  command.add_flag("--verbose", arguments.verbose,
                   "Tell of each object what becomes of it, also of more than 20");
  add_json(command, arguments.json);
}

void add_plan_file(CLI::App& command, PlanArguments& arguments) {
  auto* plan = command
                   .add_option("--plan", arguments.plan_file,
                               "Write into this file what would happen, and nothing into the "
                               "library; 'veldra apply' does it when the decisions in the file are "
                               "as they shall be")
                   ->check(some_value() & no_standard_output())
                   ->type_name("FILE")
                   ->excludes("--dry-run")
                   ->option_text("FILE (not with --dry-run)");
  command.get_option("--dry-run")->option_text("(not with --plan)");
  command.add_flag("--force", arguments.replaces, "Replace the file of the plan if it is there")
      ->needs(plan)
      ->option_text("(with --plan)");
}

void add_on_conflict(CLI::App& command, std::vector<std::string>& policies) {
  const auto check = [](const std::string& text) {
    try {
      const auto policy = policy_in(text);
      if (!policy.objects.empty()) kind_in(policy.objects);
    } catch (const CLI::ValidationError& error) {
      return std::string(error.what()).substr(std::string("--on-conflict: ").size());
    }
    return std::string();
  };
  command
      .add_option("--on-conflict", policies,
                  "What to do about a material or composition whose name is taken by one that "
                  "differs: fail (default), use the one that is there, overwrite it, or rename "
                  "the new one. KIND=WHAT says it for materials or compositions, and "
                  "KIND:OBJECT=WHAT for one of them; may be given several times")
      ->check(CLI::Validator(check, "", policy_names))
      ->allow_extra_args(false)
      ->type_name("WHAT");
}

kit::PlanRules rules_of(const std::vector<std::string>& policies, const veldra::Library& source) {
  kit::PlanRules rules;
  for (const auto& text : policies) enter(policy_in(text), source, rules);
  return rules;
}

kit::OnClash general_rule(const std::vector<std::string>& policies) {
  auto rule = kit::OnClash::Fail;
  for (const auto& text : policies) {
    const auto policy = policy_in(text);
    if (policy.objects.empty()) rule = policy.on_clash;
  }
  return rule;
}

void tell_nothing_written(const PlanArguments& arguments, Host& host) {
  if (arguments.plan_file.empty()) {
    return host.output.print("Nothing was written, because this was a dry run.\n");
  }
  const auto* when = host.status == Status::Findings ? ", once all of it is decided" : "";
  host.output.print("The library is as it was; 'veldra apply' does what the plan in {} says{}.\n",
                    in_quotes(arguments.plan_file), when);
}

std::string clashes_text(std::size_t count) {
  return count == 1 ? "1 conflict is to be decided first"
                    : fmt::format("{} conflicts are to be decided first", count);
}

PlannedChange::PlannedChange(const PlanArguments& arguments, Host& host, std::string what)
    : arguments_(arguments), host_(host), what_(std::move(what)) {
  tell_ = [this](const auto& plan, const auto& mapping) { tell_usually(plan, mapping); };
}

bool PlannedChange::carry_out(const std::shared_ptr<const veldra::Library>& source,
                              veldra::Library& library, kit::PlanRules rules,
                              const Remark& remark) {
  Progress progress(what_);
  rules.fingerprints = !arguments_.plan_file.empty();
  const kit::Plan plan(source, library, std::move(rules), [&progress] { progress.step(); });
  return carry_out(plan, library, remark);
}

bool PlannedChange::carry_out(const kit::Plan& plan, veldra::Library& library,
                              const Remark& remark) {
  Progress progress(what_);
  if (keep_) keep_(plan);
  const bool is_decided = plan.is_decided();
  if (!is_decided) refuse_clashes(plan);
  // What only tells does it as well, and the caller rolls it back, so that it tells what would be.
  const auto mapping = is_decided ? plan.apply(library, [&progress] { progress.step(); })
                                  : veldra::IdMapping(&library);
  tell_(plan, mapping);
  if (remark) remark(plan);
  return is_decided && !arguments_.only_tells() && plan.changes_anything();
}

void PlannedChange::tell_usually(const kit::Plan& plan, const veldra::IdMapping& mapping) {
  const auto entries = entries_of(plan);
  if (arguments_.json) return print_json(host_.output, json_of(entries, mapping, *plan.source()));
  host_.output.write(text_of(entries, arguments_.verbose));
  if (arguments_.only_tells()) tell_nothing_written(arguments_, host_);
}

/// What only tells shows them among all else. About a code there is nothing that could be said.
void PlannedChange::refuse_clashes(const kit::Plan& plan) {
  const auto clashes = clashes_of(plan);
  const bool by_name = std::any_of(clashes.begin(), clashes.end(),
                                   [](const auto& clash) { return clash.is_of_names; });
  const std::string advice = by_name ? advice_ : "";
  const bool refuses = !arguments_.only_tells();
  if (clashes.size() == 1 && refuses) {
    throw LibraryFailure(clashes.front().sentence + advice);
  }
  for (const auto& clash : clashes) host_.notes += fmt::format("veldra: {}\n", clash.sentence);
  const auto summary = clashes_text(clashes.size()) + advice;
  if (refuses) throw LibraryFailure(summary);
  host_.notes += fmt::format("veldra: {}\n", summary);
  // A plan is written with what is to be decided in it; a dry run would have failed.
  host_.status = arguments_.plan_file.empty() ? Status::Failed : Status::Findings;
}

}  // namespace veldra_tool
