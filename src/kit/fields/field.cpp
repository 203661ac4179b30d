// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/fields/field.hpp"

#include <veldra/kit/kinds.hpp>
#include <veldra/kit/text.hpp>

#include <fmt/format.h>

#include <algorithm>

namespace veldra::kit {

namespace {

std::string sentence_of(const std::string& field, const std::string& value,
                        const std::string& allowed) {
  return fmt::format("'{}' is no value for '{}': {}", value, field, allowed);
}

}  // namespace

std::string absence_of(const std::string& what, const std::string& name,
                       const std::vector<std::string>& names) {
  return fmt::format("there is no {} '{}'{}", what, name, choice_of(name, names));
}

std::string FieldDescription::name() const { return group.empty() ? key : group + "." + key; }

FieldError::FieldError(const std::string& field, const std::string& value,
                       const std::string& allowed)
    : Error(sentence_of(field, value, allowed)), field_(field), value_(value), allowed_(allowed) {}

FieldError::~FieldError() = default;

UnknownField::UnknownField(const std::string& name, const std::string& kind,
                           const std::vector<std::string>& names)
    : Error(
          fmt::format("{} have no field '{}'{}", kind, name, choice_of(name, names, names.size()))),
      name_(name) {}

UnknownField::~UnknownField() = default;

String library_text(const std::string& text) {
  if (!is_utf8(text)) throw Error("a text is not UTF-8");
  if (text.find('\0') != std::string::npos) throw Error("a text has the character U+0000");
  String result;
  result.utf8(text);
  return result;
}

template <class T>
void Field<T>::set(T& object, const Value& value) const {
  const auto refuse = [&](const std::string& allowed) {
    throw FieldError(name(), value_text(value), allowed);
  };
  if (!write_) refuse("it can only be read");
  if (required && (value.is_nothing() || value == Value(""))) refuse("it cannot be empty");
  if (value.is_nothing()) return write_(object, initial);
  if (value.kind() != kind) refuse(fmt::format("it must be {}", name_of(kind)));
  const bool is_choice = choices.empty() || std::find(choices.begin(), choices.end(),
                                                      value_text(value)) != choices.end();
  if (!is_choice) refuse(fmt::format("it must be one of {}", list_of(choices)));
  write_(object, value);
}

template void Field<Tag>::set(Tag&, const Value&) const;
template void Field<Layer>::set(Layer&, const Value&) const;
template void Field<MaterialType>::set(MaterialType&, const Value&) const;
template void Field<CustomProperty>::set(CustomProperty&, const Value&) const;
template void Field<Material>::set(Material&, const Value&) const;
template void Field<Composition>::set(Composition&, const Value&) const;

}  // namespace veldra::kit
