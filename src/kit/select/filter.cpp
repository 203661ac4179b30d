// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/select.hpp>

#include "kit/select/expression.hpp"

namespace veldra::kit {

template <class T>
Filter<T>::Filter(const std::string& text, const Fields<T>& fields) : fields_(&fields) {
  KnownFields known{{}, {}, fields.unit()};
  for (const auto& field : fields) known.fields.push_back(&field);
  known.place_of = [&fields](const std::string& name) {
    return static_cast<std::size_t>(&fields.at(name) - &*fields.begin());
  };
  expression_ = std::make_shared<const Expression>(parse(text, known));
}

template <class T>
bool Filter<T>::operator()(const T& object) const {
  return expression_->holds([&](std::size_t place) {
    return (fields_->begin() + static_cast<std::ptrdiff_t>(place))->get(object);
  });
}

template class Filter<Tag>;
template class Filter<Layer>;
template class Filter<MaterialType>;
template class Filter<CustomProperty>;
template class Filter<Material>;
template class Filter<Composition>;

}  // namespace veldra::kit
