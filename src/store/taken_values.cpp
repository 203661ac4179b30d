// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/taken_values.hpp"

#include "store/kinds.hpp"
#include "store/queries.hpp"

#include <veldra/exceptions.hpp>

namespace veldra {

namespace {

bool ends_with(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

String last_word(const std::string& text) {
  String word;
  word.utf8(text.substr(text.rfind(' ') + 1));
  return word;
}

}  // namespace

template <class T>
Verdict TakenValues::judge(const T& object, const std::string& message) const {
  return Kind<T>::is_asked_about ? ask(object, message) : same_object(object);
}

template <class T>
Verdict TakenValues::same_object(const T& object) const {
  const unsigned id = object.id() == 0 ? stored_id(object) : 0;
  if (id == 0) throw ObjectNotUnique();
  return {Verdict::IsStored, id, {}};
}

/// Only about names: a taken code is told by the database, and asked about by nobody.
template <class T>
Verdict TakenValues::ask(const T& object, const std::string& message) const {
  if (!ends_with(message, ".name")) throw ObjectNotUnique(last_word(message));

  String name = object.name();
  Library::Reactor& reactor = *LibraryAccess::impl(library_).reactor;
  const int decision = reactor.resolveNameConflict(library_, ObjectTraits<T>::type, name);
  transaction_.require_running();
  if (decision == Library::Reactor::Rename) return {Verdict::Rename, 0, std::move(name)};
  const bool use = decision == Library::Reactor::UseExisting;
  if (!use && decision != Library::Reactor::Overwrite) return {Verdict::TryAgain, 0, {}};

  const unsigned id = stored_id(object);
  if (id == 0) throw ObjectNotUnique();
  return {use ? Verdict::BecomeStored : Verdict::Overwrite, id, {}};
}

template <class T>
unsigned TakenValues::stored_id(const T& object) const {
  return id_of_name<T>(LibraryAccess::database(library_), object.name());
}

unsigned TakenValues::stored_id(const CustomProperty& property) const {
  return id_of_property(LibraryAccess::database(library_), property.name(), property.object_type());
}

#define VELDRA_INSTANTIATE(T) \
  template Verdict TakenValues::judge<T>(const T&, const std::string&) const;

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
