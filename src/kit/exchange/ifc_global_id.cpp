// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/ifc_global_id.hpp"

#include <sha2.h>

#include <array>
#include <cstdint>

namespace veldra::kit {

namespace {

constexpr const char* digits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";
constexpr int length = 22;

/// The bits of a sum that are used, as a UUID of a sort that programs make up by themselves.
std::array<std::uint8_t, 16> uuid_of(const std::string& name) {
  SHA2_CTX state{};
  SHA256Init(&state);
  SHA256Update(&state, reinterpret_cast<const std::uint8_t*>(name.data()), name.size());
  std::array<std::uint8_t, SHA256_DIGEST_LENGTH> sum{};
  SHA256Final(sum.data(), &state);
  std::array<std::uint8_t, 16> uuid{};
  for (std::size_t i = 0; i < uuid.size(); ++i) uuid[i] = sum[i];
  uuid[6] = static_cast<std::uint8_t>((uuid[6] & 0x0f) | 0x80);
  uuid[8] = static_cast<std::uint8_t>((uuid[8] & 0x3f) | 0x80);
  return uuid;
}

}  // namespace

/// Six bits a character, of which the first has two only.
std::string ifc_global_id(const std::string& name) {
  std::string id;
  unsigned bits = 0;
  int count = length * 6 - 128;
  for (const auto byte : uuid_of(name)) {
    bits = (bits & 0x3f) << 8 | byte;
    count += 8;
    while (count >= 6) {
      count -= 6;
      id += digits[bits >> count & 0x3f];
    }
  }
  return id;
}

}  // namespace veldra::kit
