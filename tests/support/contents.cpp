// SPDX-License-Identifier: GPL-2.0-or-later
#include "support/contents.hpp"

#include "support/names.hpp"

namespace veldra_tests {

namespace {

template <class T>
void add_contents(Contents& contents, const Library& library) {
  for (const auto& object : all_of<T>(library)) contents[title_of(object)] = values_of(object);
}

}  // namespace

Contents contents_of(const Library& library) {
  Contents contents;
  add_contents<Tag>(contents, library);
  add_contents<MaterialType>(contents, library);
  add_contents<Layer>(contents, library);
  add_contents<CustomProperty>(contents, library);
  add_contents<Material>(contents, library);
  add_contents<Composition>(contents, library);
  return contents;
}

std::string title_of(const std::shared_ptr<CustomProperty>& property) {
  return "CustomProperty for " + kind_name(property->object_type()) + " " + property->name().utf8();
}

}  // namespace veldra_tests
