// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_IFC_STYLES_HPP
#define VELDRA_KIT_EXCHANGE_IFC_STYLES_HPP

#include "kit/exchange/ifc_properties.hpp"

#include <map>
#include <optional>

namespace veldra::kit {

/// Reads the colours of materials from the styles in which they are presented.
class IfcStyles {
 public:
  explicit IfcStyles(const StepFile& file) : file_(file) {}

  /// Gives the materials of a model their colours.
  void read(const FindIfcMaterial& material_of);

 private:
  /// What styles say: the first of each that is found.
  struct Colors {
    std::optional<Color> surface;
    std::optional<Color> fill;
    std::optional<Color> line;

    void add(const Colors& more);
  };

  const Colors& colors_in(const StepValue& reference);
  Colors colors_of(const StepInstance& instance);
  Colors colors_of_all(const StepValue& list);
  std::optional<Color> color_in(const StepValue& reference, double alpha) const;
  std::optional<Color> color_of(const StepInstance& instance, double alpha) const;

  const StepFile& file_;
  std::map<std::uint64_t, Colors> known_;
  unsigned depth_ = 0;
};

}  // namespace veldra::kit

#endif
