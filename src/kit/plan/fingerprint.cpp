// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/fields.hpp>
#include <veldra/kit/plan.hpp>

#include <sha2.h>

#include <array>
#include <cstdint>
#include <type_traits>

namespace veldra::kit {

namespace {

class Sha256 {
 public:
  Sha256() { SHA256Init(&state_); }

  /// Texts end with a byte that none has, so that no two lists of texts are the same bytes.
  void add(const std::string& text) {
    SHA256Update(&state_, reinterpret_cast<const std::uint8_t*>(text.c_str()), text.size() + 1);
  }

  std::string digits() {
    std::array<char, SHA256_DIGEST_STRING_LENGTH> text{};
    return SHA256End(&state_, text.data());
  }

 private:
  SHA2_CTX state_{};
};

template <class T>
void add_custom_values(Sha256& sum, const T& object) {
  if constexpr (std::is_base_of_v<CustomValued<T>, T>) {
    for (const auto& [property, value] : object.custom_values()) {
      sum.add(property->name().utf8());
      sum.add(std::to_string(static_cast<int>(property->object_type())));
      sum.add(value.utf8());
    }
  }
}

}  // namespace

template <class T>
std::string fingerprint_of(const T& object) {
  static const Fields<T> fields;
  Sha256 sum;
  for (const auto& field : fields) {
    if (field.origin != Origin::Stored && field.origin != Origin::Asset) continue;
    const Value value = field.get(object);
    if (value == field.initial) continue;
    sum.add(field.name());
    sum.add(value_text(value));
  }
  add_custom_values(sum, object);
  return sum.digits();
}

template VELDRA_KIT_EXPORT std::string fingerprint_of(const Tag&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const Layer&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const MaterialType&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const CustomProperty&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const Material&);
template VELDRA_KIT_EXPORT std::string fingerprint_of(const Composition&);

}  // namespace veldra::kit
