// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/kit_names.hpp"

#include <cmath>

namespace veldra_tests {
namespace {

using namespace kit::physics;

/// A strip of a wall from the middle of a bridge to the middle between two, in small cells, through
/// which heat flows in both directions. It knows nothing of the method that it judges.
class Strip {
 public:
  struct Layer {
    double thickness;
    double conductivity;
    double bridge_conductivity;
    double share;
  };

  Strip(const std::vector<Layer>& layers, double half_spacing) : width_(half_spacing / columns) {
    for (const auto& layer : layers) {
      for (int row = 0; row < rows; ++row) {
        depths_.push_back(layer.thickness / rows);
        for (int column = 0; column < columns; ++column) {
          const bool bridge = (column + 0.5) / columns < layer.share;
          conductivities_.push_back(bridge ? layer.bridge_conductivity : layer.conductivity);
        }
      }
    }
  }

  /// The resistance of the whole with surfaces, for 1 K between both sides.
  double resistance(double outside, double inside) {
    outside_ = outside;
    inside_ = inside;
    solve();
    double flow = 0;
    for (int column = 0; column < columns; ++column) {
      flow += temperatures_[index(0, column)] * conductance_outside(column);
    }
    return width_ * columns / flow;
  }

 private:
  static constexpr int columns = 40;
  static constexpr int rows = 24;

  std::size_t index(std::size_t row, int column) const {
    return row * columns + static_cast<std::size_t>(column);
  }
  double half(std::size_t row, int column) const {
    return depths_[row] / 2 / conductivities_[index(row, column)];
  }
  double conductance_outside(int column) const { return width_ / (outside_ + half(0, column)); }
  double down(std::size_t row, int column) const {
    if (row + 1 == depths_.size()) return width_ / (inside_ + half(row, column));
    return width_ / (half(row, column) + half(row + 1, column));
  }
  double right(std::size_t row, int column) const {
    if (column + 1 == columns) return 0;
    const double one = conductivities_[index(row, column)];
    const double next = conductivities_[index(row, column + 1)];
    return depths_[row] / (width_ / 2 / one + width_ / 2 / next);
  }

  /// What flows out of each cell at these temperatures with 0 on both sides.
  std::vector<double> outflow(const std::vector<double>& t) const {
    std::vector<double> out(t.size(), 0);
    for (std::size_t row = 0; row < depths_.size(); ++row) {
      for (int column = 0; column < columns; ++column) {
        const auto here = index(row, column);
        if (row == 0) out[here] += conductance_outside(column) * t[here];
        const bool last = row + 1 == depths_.size();
        const double below = last ? 0 : t[index(row + 1, column)];
        const double flow = down(row, column) * (t[here] - below);
        out[here] += flow;
        if (!last) out[index(row + 1, column)] -= flow;
        if (column + 1 == columns) continue;
        const double aside = right(row, column) * (t[here] - t[here + 1]);
        out[here] += aside;
        out[here + 1] -= aside;
      }
    }
    return out;
  }

  static double product(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
  }

  /// Conjugate gradients.
  void solve() {
    const std::size_t size = conductivities_.size();
    temperatures_.assign(size, 0);
    std::vector<double> rest(size, 0);
    for (int column = 0; column < columns; ++column) {
      rest[index(depths_.size() - 1, column)] = down(depths_.size() - 1, column);
    }
    auto direction = rest;
    double norm = product(rest, rest);
    const double end = norm * 1e-22;
    for (int round = 0; round < 20000 && norm > end; ++round) {
      const auto out = outflow(direction);
      const double step = norm / product(direction, out);
      for (std::size_t i = 0; i < size; ++i) {
        temperatures_[i] += step * direction[i];
        rest[i] -= step * out[i];
      }
      const double next = product(rest, rest);
      for (std::size_t i = 0; i < size; ++i) direction[i] = rest[i] + next / norm * direction[i];
      norm = next;
    }
  }

  double width_;
  double outside_ = 0;
  double inside_ = 0;
  std::vector<double> depths_;
  std::vector<double> conductivities_;
  std::vector<double> temperatures_;
};

TEST(BridgeOracle, is_right_for_plain_layers) {
  Strip strip({{0.02, 1, 1, 0}, {0.2, 0.04, 0.04, 0}}, 0.3);
  EXPECT_NEAR(strip.resistance(0.04, 0.13), 0.02 + 5 + 0.17, 1e-9);
}

/// The combined method's figure, with the true one within its error, but for what small cells miss.
void expect_within_error(const std::vector<Strip::Layer>& layers, double half_spacing) {
  std::vector<HeatLayer> plain;
  for (const auto& layer : layers) {
    plain.push_back({layer.thickness / layer.conductivity, {}});
    if (layer.share == 0) continue;
    plain.back().bridge = Bridge{layer.share, layer.thickness / layer.bridge_conductivity, 0};
  }
  const auto combined = *combined_resistance(plain, 0.04, 0.13);
  const double truth = Strip(layers, half_spacing).resistance(0.04, 0.13);
  EXPECT_NEAR(combined.total(), truth, combined.total() * (combined.error() + 0.002))
      << "limits " << combined.lower << " and " << combined.upper << ", computed in two dimensions "
      << truth;
}

TEST(BridgeOracle, agrees_with_studs_between_boards) {
  expect_within_error({{0.015, 0.13, 0.13, 0}, {0.2, 0.04, 0.13, 0.1}, {0.0125, 0.25, 0.25, 0}},
                      0.3125);
}

TEST(BridgeOracle, agrees_with_aligned_rafters_and_battens) {
  expect_within_error({{0.06, 0.04, 0.13, 0.1}, {0.18, 0.035, 0.13, 0.1}, {0.0125, 0.25, 0.25, 0}},
                      0.4);
}

TEST(BridgeOracle, agrees_with_mortar_in_masonry) {
  expect_within_error({{0.02, 1, 1, 0}, {0.365, 0.08, 0.9, 0.05}, {0.015, 0.7, 0.7, 0}}, 0.125);
}

}  // namespace
}  // namespace veldra_tests
