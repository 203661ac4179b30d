// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_DIGEST_HPP
#define VELDRA_BENCH_DIGEST_HPP

#include "plain_sqlite.h"

#include <veldra/veldra.hpp>

#include <cstdint>
#include <string>

namespace veldra_bench {

/// A number that tells whether two programs have seen the same values in the same order.
class Digest {
 public:
  void add(std::uint64_t number);
  void add(double number);
  void add(const unsigned short* text);

  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 14695981039346656037u;
};

/// Everything that is in an object and in all that it refers to, ids included.
void add(Digest& digest, const veldra::Material& material);
void add(Digest& digest, const plain_material& material);
void add(Digest& digest, const veldra::Composition& composition);
void add(Digest& digest, const plain_composition& composition);

/// All rows of a library file with their ids, other than the identity of the library.
std::uint64_t digest_of_rows(const std::string& path);

/// All objects of a library file in whatever order and under whatever ids.
std::uint64_t digest_of_objects(const std::string& path);

}  // namespace veldra_bench

#endif
