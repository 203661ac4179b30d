// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include "kit/fields/tables.hpp"

#include <algorithm>

namespace veldra::kit {

namespace {

/// Of fields that answer to one name, the first of these is meant.
constexpr Origin by_precedence[] = {Origin::Stored, Origin::Derived, Origin::Quantity,
                                    Origin::Custom, Origin::Asset};

/// Whether a field has a name, as `same` compares them.
template <class Same>
bool answers_to(const FieldDescription& field, const std::string& name, Same same) {
  return same(field.name(), name) || same(field.key, name) || same(field.label, name) ||
         std::any_of(field.aliases.begin(), field.aliases.end(),
                     [&](const std::string& alias) { return same(alias, name); });
}

template <class T, class Same>
const Field<T>* first_that(const std::vector<Field<T>>& fields, const std::string& name,
                           Same same) {
  for (const Origin origin : by_precedence) {
    for (const auto& field : fields) {
      if (field.origin == origin && answers_to(field, name, same)) return &field;
    }
  }
  return nullptr;
}

}  // namespace

template <class T>
Fields<T>::Fields(Unit unit) : unit_(unit) {
  auto table = table_of<T>({nullptr, unit});
  fields_ = std::move(table.fields);
  custom_begin_ = table.custom_begin;
}

template <class T>
Fields<T>::Fields(const Library& library) : unit_(library.unit()) {
  auto table = table_of<T>({&library, library.unit()});
  fields_ = std::move(table.fields);
  custom_begin_ = table.custom_begin;
}

template <class T>
const Field<T>* Fields<T>::find(const std::string& name) const {
  const auto named = std::find_if(fields_.begin(), fields_.end(),
                                  [&](const Field<T>& field) { return field.name() == name; });
  if (named != fields_.end()) return &*named;
  const auto exactly = [](const std::string& one, const std::string& other) {
    return one == other;
  };
  if (const auto* field = first_that(fields_, name, exactly)) return field;
  const auto alike = [wanted = folded(name)](const std::string& one, const std::string&) {
    return folded(one) == wanted;
  };
  return first_that(fields_, name, alike);
}

template <class T>
const Field<T>& Fields<T>::at(const std::string& name) const {
  if (const auto* field = find(name)) return *field;
  throw unknown(name);
}

template <class T>
UnknownField Fields<T>::unknown(const std::string& name) const {
  std::vector<std::vector<std::string>> all;
  for (const auto& field : fields_) {
    all.push_back({short_name(field)});
    for (const auto& alias : field.aliases) {
      const bool is_meant = alias != field.key && find(alias) == &field;
      if (is_meant) all.back().push_back(alias);
    }
  }
  return {name, plural_of(ObjectTraits<T>::type), all};
}

template <class T>
std::string Fields<T>::short_name(const Field<T>& field) const {
  return find(field.key) == &field ? field.key : field.name();
}

template <class T>
std::vector<std::string> Fields<T>::names() const {
  std::vector<std::string> names;
  for (const auto& field : fields_) names.push_back(short_name(field));
  return names;
}

template class Fields<Tag>;
template class Fields<Layer>;
template class Fields<MaterialType>;
template class Fields<CustomProperty>;
template class Fields<Material>;
template class Fields<Composition>;

}  // namespace veldra::kit
