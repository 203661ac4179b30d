// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/exchange.hpp>

#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/problem.hpp"
#include "kit/exchange/source_set.hpp"
#include "kit/exchange/table_reader.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace veldra::kit {

namespace {

const FormatModule& module_of(const FileContent& content) {
  const auto& modules = format_modules();
  const auto found = std::find_if(modules.begin(), modules.end(), [&](const auto& module) {
    return module.read != nullptr && module.recognises(content);
  });
  if (found == modules.end()) refuse_unknown(content);
  return *found;
}

/// Tells of a source that has nothing.
void tell_nothing_in(SourceReport& report) {
  report.problems.push_back(
      {report.file, 0, "",
       fmt::format("this {} source has no materials and no constructions", report.format)});
}

/// Each takes up to 2 kB until it is in a library, however short it is in its source.
void require_few_objects(std::size_t objects, std::size_t bytes, const std::string& file) {
  constexpr std::size_t most_of_small = 300'000;
  constexpr std::size_t fewest_bytes_of_object = 200;
  const auto most = std::max(most_of_small, bytes / fewest_bytes_of_object);
  if (objects <= most) return;
  fail_at(file, 0, fmt::format("this has more than {} materials and constructions", most));
}

using Ids = std::vector<unsigned>;

/// Saves objects, lets go of each, and gives their ids in the same order. Where they come from is
/// noted when all have gone: a note in the place of each would leave holes between that nothing of
/// the size of an object fills.
template <class T>
Ids save_all(std::vector<Incoming<T>> objects, const SourceRules& rules, Sources& sources) {
  Ids ids;
  ids.reserve(objects.size());
  for (auto& incoming : objects) {
    const auto object = std::move(incoming.object);
    sources.library->save(object);
    ids.push_back(object->id());
    if (rules.progress) rules.progress();
  }
  for (std::size_t i = 0; i < ids.size(); ++i) {
    sources.origins[{ObjectTraits<T>::type, ids[i]}] = std::move(objects[i].origin);
  }
  return ids;
}

/// Objects for which others stand know these by their places until they are saved.
void give_ids(std::vector<RepeatedObject>& repeated, const Ids& materials,
              const Ids& compositions) {
  for (auto& each : repeated) {
    auto& key = each.object;
    key.id = (key.type == ObjectType::Material ? materials : compositions)[key.id];
  }
}

std::shared_ptr<Library> library_in_memory(Unit unit) {
  auto library = Library::create(":memory:", unit, "");
  library->purge<MaterialType>();
  return library;
}

}  // namespace

/// Knows what a source holds.
class SourceReading {
 public:
  static const SourceContent& content_of(const Source& source) { return *source.content_; }

  /// What a source holds, which may be given away where no copy of the source holds it as well.
  static NamedContent named(const Source& source, bool for_the_last_time) {
    return {source.file(), source.format(), *source.content_,
            for_the_last_time && source.content_.use_count() == 1};
  }
};

std::vector<FieldNotKept> fields_not_kept(const SourceReport& report) {
  std::map<std::pair<std::string, std::string>, std::size_t> counts;
  for (const auto& value : report.not_kept) ++counts[{value.object_class, value.field}];
  std::vector<FieldNotKept> fields;
  fields.reserve(counts.size());
  for (const auto& [field, count] : counts) fields.push_back({field.first, field.second, count});
  return fields;
}

Source::Source(std::string file, std::string content) : file_(std::move(file)) {
  const auto bytes = content.size();
  FileContent read = content_from(file_, std::move(content));
  const FormatModule& module = module_of(read);
  format_ = &module.format;
  content_ = module.read(std::move(read));
  require_few_objects(content_->made_together(), bytes, file_);
}

bool Source::has_objects() const { return content_->has_objects(); }

std::optional<Unit> Source::unit() const { return content_->unit(); }

bool Source::is_table() const noexcept { return content_->is_table(); }

namespace {

Sources read_named(const std::vector<Source>& sources, const SourceRules& rules,
                   bool for_the_last_time) {
  std::vector<NamedContent> contents;
  contents.reserve(sources.size());
  for (const auto& source : sources) {
    contents.push_back(SourceReading::named(source, for_the_last_time));
  }
  return read_together(contents, rules);
}

}  // namespace

Sources read_together(const std::vector<Source>& sources, const SourceRules& rules) {
  return read_named(sources, rules, false);
}

Sources read_together(std::vector<Source>&& sources, const SourceRules& rules) {
  const auto taken = std::move(sources);
  return read_named(taken, rules, true);
}

Sources read_together(const std::vector<NamedContent>& sources, const SourceRules& rules) {
  Sources result;
  result.reports.resize(sources.size());
  SourceSet set(rules);
  for (std::size_t i = 0; i < sources.size(); ++i) {
    const auto& source = sources[i];
    auto& report = result.reports[i];
    report.file = source.file;
    report.format = source.format.name;
    const bool has_objects = source.content.has_objects();
    if (source.for_the_last_time) {
      source.content.give_to(set, report);
    } else {
      source.content.add_to(set, report);
    }
    if (!has_objects) tell_nothing_in(report);
  }
  set.resolve();
  if (!set.clashes().empty()) throw SourceClashes(set.clashes());
  result.locale = set.locale();
  result.region = set.region();
  result.types = set.types();
  result.library = library_in_memory(rules.unit);
  set.shared().save_all(*result.library);
  const auto materials = save_all(set.take_materials(), rules, result);
  const auto compositions = save_all(set.take_compositions(), rules, result);
  for (auto& report : result.reports) give_ids(report.repeated, materials, compositions);
  return result;
}

Sources read_tables(const std::vector<Source>& sources,
                    const std::shared_ptr<const Library>& library, const TableRules& rules) {
  std::vector<SourceReport> reports(sources.size());
  std::vector<TableSource> tables;
  for (std::size_t i = 0; i < sources.size(); ++i) {
    const auto& source = sources[i];
    reports[i].file = source.file();
    reports[i].format = source.format().name;
    const auto* content = dynamic_cast<const TableContent*>(&SourceReading::content_of(source));
    if (content == nullptr) fail_at(source.file(), 0, "this is no table");
    content->add_tables(i, rules, reports[i], tables);
  }
  // There is a table for each kind of objects, and a library may have none of one.
  const bool has_any = std::any_of(sources.begin(), sources.end(),
                                   [](const Source& source) { return source.has_objects(); });
  if (!has_any) std::for_each(reports.begin(), reports.end(), tell_nothing_in);
  auto result = read_tables(tables, library, rules.progress);
  result.reports = std::move(reports);
  return result;
}

}  // namespace veldra::kit
