// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_CONTENTS_HPP
#define VELDRA_TESTS_SUPPORT_CONTENTS_HPP

#include "support/description.hpp"
#include "support/recording_reactor.hpp"

#include <veldra/veldra.hpp>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tests {

/// The values of all objects of a library by kind and name. Ids are not in it, so that a library
/// and its copy have the same contents.
using Contents = std::map<std::string, std::string>;

Contents contents_of(const veldra::Library& library);

template <class T>
std::vector<std::shared_ptr<T>> all_of(const veldra::Library& library) {
  std::vector<std::shared_ptr<T>> objects;
  library.get(objects);
  return objects;
}

/// The name of a kind, which is also that of its table.
template <class T>
std::string kind_of() {
  return kind_name(veldra::ObjectTraits<T>::type);
}

template <class T>
std::string title_of(const std::shared_ptr<T>& object) {
  return kind_of<T>() + " " + object->name().utf8();
}

std::string title_of(const std::shared_ptr<veldra::CustomProperty>& property);

template <class T>
veldra::ObjectKey key_of(unsigned id) {
  return {veldra::ObjectTraits<T>::type, id};
}

template <class T>
veldra::ObjectKey key_of(const std::shared_ptr<T>& object) {
  return key_of<T>(object->id());
}

}  // namespace veldra_tests

#endif
