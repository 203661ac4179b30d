// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/both_ways.hpp"

#include "support/contents.hpp"
#include "support/description.hpp"
#include "support/names.hpp"
#include "support/thrown.hpp"

#include <functional>
#include <map>

namespace veldra_tests {

namespace {

/// What a read gives, by id, or the exception.
using Texts = std::map<unsigned, std::string>;

std::string told(const std::function<Texts()>& read) {
  Texts texts;
  const Thrown thrown = thrown_by([&] { texts = read(); });
  if (!(thrown == "")) return "throws " + thrown.type + ": " + thrown.text;
  std::string told;
  for (const auto& text : texts) told += std::to_string(text.first) + ": " + text.second + "\n";
  return told;
}

template <class T>
Texts listed(const Library& library) {
  Texts texts;
  for (const auto& object : all_of<T>(library)) texts[object->id()] = values_of(object);
  return texts;
}

template <class T>
Texts one_by_one(const Library& library) {
  Texts texts;
  for (const unsigned id : library.ids<T>()) {
    const auto object = library.get<T>(id);
    if (object != nullptr) texts[id] = values_of(object);
  }
  return texts;
}

template <class T>
BothWays both_ways(const Library& library) {
  return {kind_of<T>(), told([&] { return listed<T>(library); }),
          told([&] { return one_by_one<T>(library); })};
}

}  // namespace

std::vector<BothWays> read_both_ways(const Library& library) {
  return {both_ways<Tag>(library),          both_ways<Layer>(library),
          both_ways<MaterialType>(library), both_ways<CustomProperty>(library),
          both_ways<Material>(library),     both_ways<Composition>(library)};
}

}  // namespace veldra_tests
