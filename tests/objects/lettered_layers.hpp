// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_OBJECTS_LETTERED_LAYERS_HPP
#define VELDRA_TESTS_OBJECTS_LETTERED_LAYERS_HPP

#include "support/names.hpp"
#include "support/thrown.hpp"

#include <cctype>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace veldra_tests {

// Build-ups as words. Layers are told apart by their thicknesses: A is 1, B is 2, and so on;
// lower-case letters name layers with the function of a structure.

constexpr unsigned one_below_zero = 4294967295u;
constexpr std::uint64_t last_number = 18446744073709551615u;
constexpr std::uint64_t beyond_32_bits = 4294967296u;

inline Composition::Layer layer_of(char letter) {
  const bool structure = std::islower(letter) != 0;
  return {nullptr, structure ? Material::Function::Structure : Material::Function::None,
          double(std::toupper(letter) - 'A' + 1)};
}

inline std::string letters_of(const Composition& composition) {
  std::string letters;
  for (const Composition::Layer& layer : composition.layers()) {
    const char letter = static_cast<char>('A' + int(layer.thickness()) - 1);
    const bool structure = layer.function() == Material::Function::Structure;
    letters.push_back(structure ? static_cast<char>(std::tolower(letter)) : letter);
  }
  return letters;
}

inline std::vector<unsigned> indices_of(const Composition& composition) {
  return {composition.first_core_layer(), composition.last_core_layer(),
          composition.structural_layer()};
}

struct Core {
  unsigned first;
  unsigned last;
  unsigned structural;
};

/// A build-up in letters.
struct Lettered {
  const char* letters;
  Core core;
};

const Lettered five = {"ABCDE", {1, 3, 2}};

inline std::shared_ptr<Composition> build_up(const std::string& letters, const Core& core) {
  const auto composition = Composition::create();
  for (const char letter : letters) composition->appendLayer(layer_of(letter));
  composition->last_core_layer(core.last);
  composition->first_core_layer(core.first);
  composition->structural_layer(core.structural);
  EXPECT_THAT(indices_of(*composition), ElementsAre(core.first, core.last, core.structural));
  return composition;
}

/// Five layers with the core B, C, D, of which C is the structural layer.
inline std::shared_ptr<Composition> five_layers() { return build_up(five.letters, five.core); }

#define EXPECT_LAYERS(composition, letters, first, last, structural)                 \
  EXPECT_EQ(letters_of(*(composition)), letters);                                    \
  EXPECT_THAT(indices_of(*(composition)),                                            \
              ElementsAre(static_cast<unsigned>(first), static_cast<unsigned>(last), \
                          static_cast<unsigned>(structural)))

inline void expect_refused(const std::function<void()>& call) {
  const Thrown thrown = thrown_by(call);
  EXPECT_EQ(thrown, "std::out_of_range");
  EXPECT_EQ(thrown.text, "invalid vector<T> subscript");
}

}  // namespace veldra_tests

#endif
