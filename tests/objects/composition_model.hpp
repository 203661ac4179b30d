// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_OBJECTS_COMPOSITION_MODEL_HPP
#define VELDRA_TESTS_OBJECTS_COMPOSITION_MODEL_HPP

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace veldra_tests {

/// What an operation left: all that can be seen of the layers and their indices, and what it threw.
struct BuildUp {
  struct Layer {
    double thickness;
    int function;

    bool operator==(const Layer& other) const {
      return thickness == other.thickness && function == other.function;
    }
  };

  std::vector<Layer> layers;
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  std::uint32_t structural = 0;
  bool has_variable = false;
  std::uint32_t variable = 0;
  bool dirty = false;
  std::string thrown;

  bool operator==(const BuildUp& other) const;
  bool operator<(const BuildUp& other) const;
};

std::ostream& operator<<(std::ostream& out, const BuildUp& build_up);

/// A second, deliberately plain model of the layers of a composition and of their indices: no
/// shared steps, no cleverness, one function a rule, to compare the real one with.
class CompositionModel {
 public:
  explicit CompositionModel(const BuildUp& start) : now_(start) {}

  const BuildUp& now() const { return now_; }

  void first_core_layer(std::uint32_t index);
  void last_core_layer(std::uint32_t index);
  void structural_layer(std::uint32_t index);
  void variable_layer(std::uint32_t index);
  void clear_variable_layer();
  void append_layer(const BuildUp::Layer& layer);
  void insert_layer(std::uint64_t index, const BuildUp::Layer& layer);
  void remove_layer(std::uint64_t index);
  void move_layer(std::uint64_t from, std::uint64_t to);
  void set_function(std::uint64_t index, int function);

 private:
  using Index = std::uint32_t BuildUp::*;

  /// The last layer; 4294967295 without layers.
  std::uint32_t end() const { return static_cast<std::uint32_t>(now_.layers.size()) - 1; }

  void store(Index index, std::uint32_t value);
  void store_first(std::uint32_t index);
  void store_last_at_the_end_of_a_move(std::uint32_t index);
  bool is_structure(std::uint32_t index) const;

  BuildUp now_;
};

}  // namespace veldra_tests

#endif
