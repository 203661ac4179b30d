// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/fields/field.hpp"
#include "kit/fields/parts.hpp"

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

/// What was perhaps meant, by whatever name, and what there is.
std::string choice_of_fields(const std::string& wanted,
                             const std::vector<std::vector<std::string>>& fields) {
  Nearest search(wanted);
  std::vector<std::string> listed;
  for (const auto& names : fields) {
    for (const auto& name : names) search.offer(name);
    const std::vector<std::string> others(names.begin() + 1, names.end());
    listed.push_back(others.empty() ? names.front()
                                    : fmt::format("{} ({})", names.front(), list_of(others)));
  }
  const auto question = suggestion(search.names());
  return fmt::format("{} there are {}", question.empty() ? ";" : question,
                     list_of(listed, listed.size()));
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
                           const std::vector<std::vector<std::string>>& fields)
    : Error(fmt::format("{} have no field '{}'{}", kind, name, choice_of_fields(name, fields))),
      name_(name) {}

UnknownField::~UnknownField() = default;

String library_text(const std::string& text) {
  if (!is_utf8(text)) throw Error("a text is not UTF-8");
  if (text.find('\0') != std::string::npos) throw Error("a text has the character U+0000");
  String result;
  result.utf8(text);
  return result;
}

std::string counted_text(const FieldDescription& field, const Value& value) {
  const bool counts = field.is_position && value.kind() == Value::Kind::WholeNumber;
  return value_text(counts ? Value(value.as<long long>() + 1) : value);
}

/// The word for a number, or the number.
static std::string word_for(const FieldDescription& field, long long number) {
  for (const auto& [word, each] : field.words) {
    if (each == number) return word;
  }
  return fmt::format("{}", number);
}

std::string field_text(const FieldDescription& field, const Value& value) {
  if (field.words.empty()) return counted_text(field, value);
  if (value.kind() == Value::Kind::WholeNumber) return word_for(field, value.as<long long>());
  if (value.kind() != Value::Kind::Layers) return value_text(value);
  std::string text;
  for (const auto& layer : value.as<Value::Layers>()) {
    text += (text.empty() ? "" : "; ") +
            joined({layer.material, exact_number(layer.thickness), word_for(field, layer.function)},
                   layer_separator);
  }
  return text;
}

std::string field_text(ObjectType kind, const std::string& field, const Value& value) {
  return with_class_of(kind, [&](auto of) {
    const auto& fields = built_in_fields<typename decltype(of)::type>();
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const auto& each) { return each.name() == field; });
    return found == fields.end() ? value_text(value) : field_text(*found, value);
  });
}

template <class T>
void Field<T>::set(T& object, const Value& value) const {
  const auto refuse = [&](const std::string& allowed) {
    throw FieldError(name(), counted_text(*this, value), allowed);
  };
  if (!write_) refuse(fixed_because.empty() ? "it can only be read" : fixed_because);
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
