// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_JSON_HPP
#define VELDRA_TOOL_JSON_HPP

#include "kit.hpp"
#include "process/spool.hpp"

#include <veldra/veldra.hpp>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace veldra_tool {

/// JSON whose members stay in the order in which they were added.
using Json = nlohmann::ordered_json;

/// A number; null for NaN, and a text for what else JSON has no number for.
Json number_to_json(double number);

/// The value of a field as it stands in exported files; null for nothing.
Json value_to_json(const kit::Value& value);

// The objects as they stand in exported files: names instead of ids, and no members for what has
// its default value.
Json to_json(const veldra::Material& material);
Json to_json(const veldra::Composition& composition);
Json to_json(const veldra::CustomProperty& property);

/// The library's own values, its GUID apart: that belongs to one file.
Json settings_to_json(const veldra::Library& library);

/// What tells an object from others: its kind, id and name.
Json key_to_json(const veldra::ObjectKey& key, const std::string& name);

/// A value as text, ending with a line break. Characters that could steer a terminal stand there as
/// the escapes that JSON has for them.
std::string json_text(const Json& json);

/// Prints a value and a line break.
void print_json(Spool& output, const Json& json);

/// Prints a list of what `json_of` makes of each entry.
template <class Entry, class JsonOf>
void print_json_list(Spool& output, const std::vector<Entry>& entries, JsonOf json_of) {
  Json list = Json::array();
  for (const Entry& entry : entries) list.push_back(json_of(entry));
  print_json(output, list);
}

}  // namespace veldra_tool

#endif
