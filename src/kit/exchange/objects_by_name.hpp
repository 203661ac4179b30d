// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_OBJECTS_BY_NAME_HPP
#define VELDRA_KIT_EXCHANGE_OBJECTS_BY_NAME_HPP

#include <veldra/library.hpp>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace veldra::kit {

/// The ids of all objects of a kind, by name, and by id where names are equal.
template <class T>
std::vector<unsigned> ids_by_name(const Library& library) {
  std::vector<std::pair<String, unsigned>> names;
  library.for_each<T>([&](const std::shared_ptr<T>& object) {
    names.emplace_back(object->name(), object->id());
    return true;
  });
  std::sort(names.begin(), names.end());
  std::vector<unsigned> ids;
  ids.reserve(names.size());
  for (const auto& entry : names) ids.push_back(entry.second);
  return ids;
}

/// Calls `work` with the object of each place of a list and with the place. `id_of` gives the id
/// for an element of the list. A part of the objects is read at a time, since there may be many.
///
/// Throws `std::out_of_range`: an object has gone.
template <class T, class List, class IdOf, class Work>
void for_each_listed(const Library& library, const List& list, IdOf id_of, Work work) {
  constexpr std::size_t at_once = 256;
  for (std::size_t begin = 0; begin < list.size(); begin += at_once) {
    const auto end = std::min<std::size_t>(begin + at_once, list.size());
    std::set<unsigned> ids;
    for (std::size_t i = begin; i < end; ++i) ids.insert(id_of(list[i]));
    std::vector<std::shared_ptr<T>> objects;
    library.get(objects, ids);
    std::map<unsigned, std::shared_ptr<T>> by_id;
    for (auto& object : objects) by_id[object->id()] = std::move(object);
    for (std::size_t i = begin; i < end; ++i) work(*by_id.at(id_of(list[i])), i);
  }
}

/// Calls `work` with each object of a kind, in the order of their names, and with its place.
template <class T, class Work>
void for_each_by_name(const Library& library, Work work) {
  for_each_listed<T>(
      library, ids_by_name<T>(library), [](unsigned id) { return id; }, work);
}

}  // namespace veldra::kit

#endif
