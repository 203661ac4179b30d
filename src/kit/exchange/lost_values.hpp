// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_LOST_VALUES_HPP
#define VELDRA_KIT_EXCHANGE_LOST_VALUES_HPP

#include <veldra/kit/exchange.hpp>
#include <veldra/kit/fields.hpp>
#include <veldra/kit/kinds.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace veldra::kit {

/// Counts values by class and field.
class FieldCounts {
 public:
  void add(const std::string& object_class, const std::string& field, std::size_t count = 1);
  std::vector<FieldNotKept> fields() const;

 private:
  std::map<std::pair<std::string, std::string>, std::size_t> counts_;
};

/// Counts the values of the assets of an object, which tables do not hold.
template <class T>
void count_assets(const Fields<T>& fields, const T& object, FieldCounts& counts) {
  for (const auto& field : fields) {
    if (field.origin != Origin::Asset) continue;
    const auto value = field.get(object);
    if (value.is_nothing() || value == field.initial) continue;
    counts.add(singular_of(ObjectTraits<T>::type), field.name());
  }
}

/// Counts the values of objects that do not come back from a format.
class LostValues {
 public:
  /// Compares an object with what is read of it again.
  void compare(const Material& written, const Material& read);
  void compare(const Composition& written, const Composition& read);

  std::vector<FieldNotKept> fields() const { return counts_.fields(); }

 private:
  template <class T>
  void compare_fields(const T& written, const T& read);
  template <class T>
  void compare_custom_values(const T& written, const T& read);
  void compare_layers(const Composition& written, const Composition& read);

  FieldCounts counts_;
};

}  // namespace veldra::kit

#endif
