// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_LOOKUP_HPP
#define VELDRA_TOOL_LOOKUP_HPP

#include "failure.hpp"
#include "kinds.hpp"
#include "process/interruption.hpp"
#include "text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace veldra_tool {

/// What a text that names an object says.
struct Naming {
  bool may_be_name = true;
  bool may_be_id = true;
  std::string text;
};

/// `id:NUMBER` is an id, and after `name:` all is a name; any other text may be either.
Naming naming_of(const std::string& text);

/// The id that a text of digits stands for; 0 for any other text.
unsigned id_in(const std::string& text);

/// What stands behind a kind and a colon; empty for a text that does not begin with this kind.
std::string behind_kind(const std::string& text, veldra::ObjectType kind);

template <class T>
std::vector<std::shared_ptr<T>> objects_named(const veldra::Library& library,
                                              const std::string& name) {
  const auto found = library.get<T>(library_text(name));
  return found ? std::vector<std::shared_ptr<T>>{found} : std::vector<std::shared_ptr<T>>();
}

/// Property names are unique among the properties for one kind of object only.
template <>
std::vector<std::shared_ptr<veldra::CustomProperty>> objects_named(const veldra::Library& library,
                                                                   const std::string& name);

/// Whether reading has failed at an object of whose name nothing is known.
bool is_unreadable_object();

/// Calls `offer` with the name of each object of a kind; with none where one is not UTF-8.
template <class T, class Offer>
void offer_names(const veldra::Library& library, Offer offer) {
  try {
    for (const auto& [id, each] : library.names<T>()) {
      stop_if_asked();
      offer(each.utf8());
    }
  } catch (...) {
    if (!is_unreadable_object()) throw;
  }
}

/// A question for those names of a kind that are most like one that is not there; empty where none
/// is.
template <class T>
std::string suggested_names(const veldra::Library& library, const std::string& name) {
  kit::Nearest nearest(name);
  offer_names<T>(library, [&](const std::string& each) { nearest.offer(each); });
  return printable(kit::suggestion(nearest.names()));
}

/// What there is of a kind of which a library has few, in place of what is not there.
template <class T>
std::string choice_of_names(const veldra::Library& library, const std::string& name) {
  std::vector<std::string> names;
  offer_names<T>(library, [&](const std::string& each) { names.push_back(each); });
  std::sort(names.begin(), names.end());
  return printable(kit::choice_of(name, names));
}

/// Of small kinds what there is, of others what was perhaps meant.
template <class T>
std::string alternatives(const veldra::Library& library, const std::string& name) {
  constexpr bool is_small =
      std::is_same_v<T, veldra::Tag> || std::is_same_v<T, veldra::MaterialType>;
  return is_small ? choice_of_names<T>(library, name) : suggested_names<T>(library, name);
}

/// The object that a text names (`naming_of`), also behind its kind and a colon. Throws
/// `LibraryFailure` when there is none, and when there are several.
template <class T>
std::shared_ptr<T> find_object(const veldra::Library& library, const std::string& text) {
  const std::string kind = singular_of(veldra::ObjectTraits<T>::type);
  const auto behind = behind_kind(text, veldra::ObjectTraits<T>::type);
  if (!behind.empty() && objects_named<T>(library, text).empty()) {
    return find_object<T>(library, behind);
  }
  const Naming naming = naming_of(text);
  std::vector<std::shared_ptr<T>> named;
  std::shared_ptr<T> numbered;
  if (naming.may_be_name) named = objects_named<T>(library, naming.text);
  if (naming.may_be_id) numbered = library.get<T>(id_in(naming.text));
  if (named.size() > 1) {
    throw LibraryFailure(fmt::format("there are several {} {}; give the id of one ({} or {})",
                                     plural_of(veldra::ObjectTraits<T>::type),
                                     in_quotes(naming.text), named[0]->id(), named[1]->id()));
  }
  if (named.empty() && !numbered) {
    throw LibraryFailure(fmt::format("there is no {} {} in the library{}", kind, in_quotes(text),
                                     alternatives<T>(library, naming.text)));
  }
  if (!named.empty() && numbered && named[0]->id() != numbered->id()) {
    throw LibraryFailure(
        fmt::format("{0} is the name of the {1} with the id {2} and the id of the {1} {3}; say "
                    "name:{4} or id:{4}",
                    in_quotes(text), kind, named[0]->id(), in_quotes(numbered->name().utf8()),
                    printable(text)));
  }
  return named.empty() ? numbered : named[0];
}

/// The key of the object of a kind that a text names. Throws `LibraryFailure` as `find_object`.
inline veldra::ObjectKey object_key(const veldra::Library& library, veldra::ObjectType kind,
                                    const std::string& text) {
  return with_class_of(kind, [&](auto of) {
    using T = typename decltype(of)::type;
    return veldra::ObjectKey(kind, find_object<T>(library, text)->id());
  });
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
