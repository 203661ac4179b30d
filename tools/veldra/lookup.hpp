#ifndef VELDRA_TOOL_LOOKUP_HPP
#define VELDRA_TOOL_LOOKUP_HPP

#include "failure.hpp"
#include "kinds.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tool {

/// The id that a text of digits stands for; 0 for any other text.
inline unsigned id_in(const std::string& text) {
  unsigned id = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, id);
  return result.ec == std::errc() && result.ptr == end ? id : 0;
}

/// The object of that name, else the one of that id. Throws `Failure` when there is neither.
template <class T>
std::shared_ptr<T> find_object(const veldra::Library& library, const std::string& name_or_id) {
  auto found = library.get<T>(library_text(name_or_id));
  if (!found) found = library.get<T>(id_in(name_or_id));
  if (found) return found;
  throw Failure(fmt::format("there is no {} {} in the library",
                            singular_of(veldra::ObjectTraits<T>::type), in_quotes(name_or_id)));
}

/// Property names are unique among the properties for one kind of object only.
template <>
inline std::shared_ptr<veldra::CustomProperty> find_object(const veldra::Library& library,
                                                           const std::string& name_or_id) {
  std::vector<std::shared_ptr<veldra::CustomProperty>> all;
  library.get(all);
  std::shared_ptr<veldra::CustomProperty> found;
  for (const auto& property : all) {
    if (property->name() != library_text(name_or_id)) continue;
    if (found) {
      throw Failure(fmt::format("there are several properties {}; give the id of one ({} or {})",
                                in_quotes(name_or_id), found->id(), property->id()));
    }
    found = property;
  }
  if (!found) found = library.get<veldra::CustomProperty>(id_in(name_or_id));
  if (found) return found;
  throw Failure(fmt::format("there is no property {} in the library", in_quotes(name_or_id)));
}

/// The order of lists: by name, and by id where names are equal.
template <class T>
void sort_by_name(std::vector<std::shared_ptr<T>>& objects) {
  std::sort(objects.begin(), objects.end(), [](const auto& left, const auto& right) {
    if (left->name() != right->name()) return left->name() < right->name();
    return left->id() < right->id();
  });
}

/// All objects of a kind, by name.
template <class T>
std::vector<std::shared_ptr<T>> all_objects(const veldra::Library& library) {
  std::vector<std::shared_ptr<T>> objects;
  library.get(objects);
  sort_by_name(objects);
  return objects;
}

}  // namespace veldra_tool

#endif
