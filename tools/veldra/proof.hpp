// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_PROOF_HPP
#define VELDRA_TOOL_PROOF_HPP

#include "json.hpp"
#include "kit.hpp"
#include "process/spool.hpp"

#include <veldra/veldra.hpp>

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace veldra_tool {

/// What is asked for with a build-up, as it is written.
struct ProofWishes {
  std::string boundary;
  std::string climate;  ///< a file; empty for none
  std::optional<int> room_class;
  std::optional<double> target;
  std::optional<unsigned> layer;  ///< counted from 1
};

/// The options for what is around a build-up.
void add_climate(CLI::App& command, ProofWishes& wishes);

/// All options for them.
void add_proof_wishes(CLI::App& command, ProofWishes& wishes);

/// The same, understood.
struct ProofRequest {
  kit::physics::BoundaryStatement boundary;
  std::optional<kit::physics::Climate> climate;
  std::optional<double> target;
  std::optional<std::size_t> layer;  ///< counted from 0
};

/// Reads the file of the climate. Throws `Failure`, and `CLI::ValidationError` for a wrong option.
ProofRequest read_wishes(const ProofWishes& wishes);

/// All figures of a build-up.
struct Proof {
  kit::Transmission heat;
  kit::Diffusion diffusion;
  kit::CompositionStorage storage;
  std::optional<kit::CompositionMoisture> moisture;
  std::optional<kit::ThicknessSolution> solution;

  bool has_wrong_values = false;  ///< a layer's material has values that cannot be used

  /// Whether there is a U-value, and what else was asked for, and every value can be used.
  bool is_complete() const;
};

Proof proof_of(const veldra::Composition& composition, veldra::Unit unit,
               const ProofRequest& request);

void print_proof(Spool& output, const Proof& proof, const veldra::Composition& composition,
                 veldra::Unit unit);

Json proof_json(const Proof& proof, const veldra::Composition& composition);

}  // namespace veldra_tool

#endif
