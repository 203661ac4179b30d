// SPDX-License-Identifier: GPL-2.0-or-later
#include "lookup.hpp"

#include <charconv>
#include <iterator>
#include <string_view>

namespace veldra_tool {

Naming naming_of(const std::string& text) {
  constexpr std::string_view id = "id:";
  constexpr std::string_view name = "name:";
  if (text.compare(0, id.size(), id) == 0) return {false, true, text.substr(id.size())};
  if (text.compare(0, name.size(), name) == 0) return {true, false, text.substr(name.size())};
  return {true, true, text};
}

unsigned id_in(const std::string& text) {
  unsigned id = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, id);
  return result.ec == std::errc() && result.ptr == end ? id : 0;
}

std::string behind_kind(const std::string& text, veldra::ObjectType kind) {
  const auto colon = text.find(':');
  if (colon == std::string::npos) return {};
  const auto named = kinds_by_name().find(text.substr(0, colon));
  return named != kinds_by_name().end() && named->second == kind ? text.substr(colon + 1) : "";
}

bool is_unreadable_object() {
  const auto kind = veldra::error_kind();
  return kind == veldra::ErrorKind::MalformedText || kind == veldra::ErrorKind::Damaged;
}

template <>
std::vector<std::shared_ptr<veldra::CustomProperty>> objects_named(const veldra::Library& library,
                                                                   const std::string& name) {
  const auto wanted = library_text(name);
  std::vector<std::shared_ptr<veldra::CustomProperty>> all;
  std::vector<std::shared_ptr<veldra::CustomProperty>> result;
  library.get(all);
  std::copy_if(all.begin(), all.end(), std::back_inserter(result),
               [&](const auto& property) { return property->name() == wanted; });
  return result;
}

}  // namespace veldra_tool
