// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/select.hpp>
#include <veldra/kit/text.hpp>

#include "kit/select/comparison.hpp"

#include <algorithm>

namespace veldra::kit {

namespace {

/// What the value of a field is sorted by.
struct Key {
  bool absent = true;
  double number = 0;
  std::string folded_text;
  std::string text;
};

Key key_of(const FieldDescription& field, const Value& value) {
  Key key;
  key.absent = value.is_empty();
  if (key.absent) return key;
  if (value.kind() == Value::Kind::Numbers) {
    key.number = value.as<Value::Numbers>().front();
  } else if (comparing_of(field) == Comparing::Numbers) {
    key.number = number_of(value).value_or(0);
  } else {
    key.text = value_text(value);
    key.folded_text = folded(key.text);
  }
  return key;
}

/// Less than 0, 0 or greater, as the keys are ordered when they rise.
int order_of(const Key& left, const Key& right) {
  if (left.number != right.number) return left.number < right.number ? -1 : 1;
  const int order = left.folded_text.compare(right.folded_text);
  return order != 0 ? order : left.text.compare(right.text);
}

/// Whether a row of keys comes before another one.
bool is_before(const std::vector<Key>& left, const std::vector<Key>& right,
               const std::vector<bool>& falling) {
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (left[i].absent != right[i].absent) return right[i].absent;
    const int order = order_of(left[i], right[i]);
    if (order != 0) return (order < 0) != falling[i];
  }
  return false;
}

}  // namespace

std::vector<std::string> names_in(const std::string& list) {
  std::vector<std::string> names;
  std::string name;
  bool in_quotes = false;
  const auto add = [&] {
    name = trimmed(name);
    if (name.empty()) throw Error("the name of a field is missing");
    names.push_back(name);
    name.clear();
  };
  for (const char character : list) {
    if (character == '`') {
      in_quotes = !in_quotes;
    } else if (character == ',' && !in_quotes) {
      add();
    } else {
      name += character;
    }
  }
  if (in_quotes) throw Error("the back-quote of a name has no end");
  add();
  return names;
}

template <class T>
Order<T>::Order(const std::string& text, const Fields<T>& fields) {
  for (const auto& name : names_in(text)) {
    const bool falling = name.front() == '-' && fields.find(name) == nullptr;
    by_.push_back({&fields.at(falling ? trimmed(name.substr(1)) : name), falling});
  }
}

template <class T>
void Order<T>::sort(std::vector<std::shared_ptr<T>>& objects) const {
  using Row = std::pair<std::vector<Key>, std::shared_ptr<T>>;
  std::vector<bool> falling;
  for (const By& by : by_) falling.push_back(by.falling);
  std::vector<Row> rows;
  rows.reserve(objects.size());
  for (const auto& object : objects) {
    std::vector<Key> keys;
    for (const By& by : by_) keys.push_back(key_of(*by.field, by.field->get(*object)));
    rows.emplace_back(std::move(keys), object);
  }
  std::stable_sort(rows.begin(), rows.end(), [&](const Row& left, const Row& right) {
    return is_before(left.first, right.first, falling);
  });
  std::transform(rows.begin(), rows.end(), objects.begin(),
                 [](const Row& row) { return row.second; });
}

template class Order<Tag>;
template class Order<Layer>;
template class Order<MaterialType>;
template class Order<CustomProperty>;
template class Order<Material>;
template class Order<Composition>;

}  // namespace veldra::kit
