// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_CONTAINERS_HPP
#define VELDRA_STORE_CONTAINERS_HPP

#include <veldra/custom_property.hpp>

#include <odb/std-map-traits.hxx>
#include <odb/std-set-traits.hxx>

#include <cmath>
#include <map>
#include <set>

// How the mapping reads and writes the containers whose rows may hold NULL where the container can
// hold nothing of the kind. Such rows are passed over.

namespace odb {

/// Thicknesses: NULL arrives as NaN, which a set cannot hold, since it has no order.
template <>
class access::container_traits<std::set<double>> {
 public:
  static const container_kind kind = ck_set;
  static const bool smart = false;

  using container_type = std::set<double>;
  using value_type = double;
  using functions = set_functions<value_type>;

  static void persist(const container_type& values, const functions& rows) {
    for (const double value : values) {
      if (!std::isnan(value)) rows.insert(value);
    }
  }

  static void load(container_type& values, bool more, const functions& rows) {
    values.clear();
    while (more) {
      double value;
      more = rows.select(value);
      if (!std::isnan(value)) values.insert(value);
    }
  }

  static void update(const container_type& values, const functions& rows) {
    erase(rows);
    persist(values, rows);
  }

  static void erase(const functions& rows) { rows.delete_(); }
};

/// Custom values: NULL arrives as a key without a property, which has no name to be ordered by.
template <>
class access::container_traits<std::map<veldra::CustomPropertyKey, veldra::String>> {
 public:
  static const container_kind kind = ck_map;
  static const bool smart = false;

  using container_type = std::map<veldra::CustomPropertyKey, veldra::String>;
  using key_type = veldra::CustomPropertyKey;
  using value_type = veldra::String;
  using functions = map_functions<key_type, value_type>;

  static void persist(const container_type& values, const functions& rows) {
    for (const auto& value : values) rows.insert(value.first, value.second);
  }

  static void load(container_type& values, bool more, const functions& rows) {
    values.clear();
    while (more) {
      key_type key;
      value_type value;
      more = rows.select(key, value);
      if (key.property_ != nullptr) values.emplace(std::move(key), std::move(value));
    }
  }

  static void update(const container_type& values, const functions& rows) {
    erase(rows);
    persist(values, rows);
  }

  static void erase(const functions& rows) { rows.delete_(); }
};

}  // namespace odb

#endif
