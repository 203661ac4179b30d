// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_TEXT_SHA256_HPP
#define VELDRA_KIT_TEXT_SHA256_HPP

#include <sha2.h>

#include <array>
#include <cstdint>
#include <string>

namespace veldra::kit {

/// The sum of a list of texts.
class Sha256 {
 public:
  Sha256() { SHA256Init(&state_); }

  /// Texts end with a byte that none has, so that no two lists of texts are the same bytes.
  void add(const std::string& text) {
    SHA256Update(&state_, reinterpret_cast<const std::uint8_t*>(text.c_str()), text.size() + 1);
  }

  /// In hexadecimal digits.
  std::string digits() {
    std::array<char, SHA256_DIGEST_STRING_LENGTH> text{};
    return SHA256End(&state_, text.data());
  }

 private:
  SHA2_CTX state_{};
};

}  // namespace veldra::kit

#endif
