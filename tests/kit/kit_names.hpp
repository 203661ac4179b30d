// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_KIT_KIT_NAMES_HPP
#define VELDRA_TESTS_KIT_KIT_NAMES_HPP

#include "support/names.hpp"

#include <veldra/kit/kit.hpp>

#include <string>

namespace veldra_tests {

/// The sentence of the error of the kit that `work` throws; a text that says so if it throws none.
template <class Work>
std::string error_of(Work work) {
  try {
    work();
  } catch (const kit::Error& error) {
    return error.what();
  }
  return "no error";
}

/// A text that says the same many times.
inline std::string repeated(const std::string& part, std::size_t count) {
  std::string whole;
  whole.reserve(part.size() * count);
  for (; count > 0; --count) whole += part;
  return whole;
}

inline String text(const std::string& utf8) { return String(utf8.c_str()); }

/// A new material with one custom value.
inline std::shared_ptr<Material> with_custom(const std::string& name, const std::string& property,
                                             const std::string& value) {
  const auto material = Material::create(text(name));
  material->custom_value(text(property), text(value));
  return material;
}

}  // namespace veldra_tests

#endif
