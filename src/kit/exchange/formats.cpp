// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/exchange.hpp>
#include <veldra/kit/text.hpp>

#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/library_part.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

/// The module of a format that can be written.
const FormatModule& module_for(const Format& format) {
  const auto& modules = format_modules();
  const auto found = std::find_if(modules.begin(), modules.end(), [&](const auto& module) {
    return module.format.name == format.name && module.write != nullptr;
  });
  if (found != modules.end()) return *found;
  std::string names;
  for (const auto& module : modules) {
    if (module.write != nullptr) names += (names.empty() ? "" : ", ") + module.format.name;
  }
  if (!format.readable) {
    throw Error(fmt::format("this build can neither read nor write {}", format.name));
  }
  throw Error(fmt::format("{} can be read only; there are writers for {}", format.name, names));
}

void add_properties(const Library& library, std::set<ObjectKey>& keys) {
  for (const unsigned id : library.ids<CustomProperty>()) {
    keys.insert({ObjectType::CustomProperty, id});
  }
}

bool has_ending(const Format& format, const std::string& ending) {
  return std::find(format.endings.begin(), format.endings.end(), ending) != format.endings.end();
}

}  // namespace

const std::vector<FormatModule>& format_modules() {
  static const std::vector<FormatModule> all{
      catalogue_module(), honeybee_module(), openstudio_module(), epjson_module(), gbxml_module(),
      workbook_module(),  idf_module(),      ifc_module(),        table_module()};
  return all;
}

const std::vector<Format>& formats() {
  static const auto all = [] {
    std::vector<Format> formats;
    for (const auto& module : format_modules()) formats.push_back(module.format);
    return formats;
  }();
  return all;
}

const Format* find_format(const std::string& name) {
  const auto wanted = lower_case(name);
  const auto& all = formats();
  const auto first_that = [&](auto is_meant) -> const Format* {
    const auto found = std::find_if(all.begin(), all.end(), is_meant);
    return found != all.end() ? &*found : nullptr;
  };
  const auto* named =
      first_that([&](const Format& format) { return lower_case(format.name) == wanted; });
  if (named != nullptr) return named;
  return first_that([&](const Format& format) { return has_ending(format, wanted); });
}

WriteReport write(const Library& library, const Format& format, const TextSink& sink,
                  const WriteRules& rules) {
  return module_for(format).write(library, sink, rules);
}

WriteReport write(const Library& library, const std::set<ObjectKey>& keys, const Format& format,
                  const TextSink& sink, const WriteRules& rules) {
  const auto& module = module_for(format);
  auto copied = keys;
  if (module.properties_of == FormatModule::PropertiesOf::Library) add_properties(library, copied);
  const LibraryPart part(library, copied);
  auto of_part = rules;
  of_part.part_of = &part.whole();
  auto report = module.write(part.library(), sink, of_part);
  for (const auto& field : part.left_behind()) report.not_written.push_back(field);
  return report;
}

}  // namespace veldra::kit
