// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_STEP_FILE_HPP
#define VELDRA_KIT_EXCHANGE_STEP_FILE_HPP

#include "kit/exchange/step_value.hpp"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace veldra::kit {

/// An instance of a STEP file.
struct StepInstance {
  std::uint64_t number = 0;
  std::string_view keyword;  ///< what it is
  std::string_view values;   ///< what stands between its parentheses
  unsigned line = 0;         ///< where it begins
};

/// The values of an instance, by their places. Those beyond the last one are missing, and no
/// instance that is read has more than there is room for here.
class StepFields {
 public:
  explicit StepFields(std::string_view values);

  const StepValue& operator[](std::size_t place) const { return fields_.at(place); }

 private:
  std::array<StepValue, 20> fields_;
};

/// A STEP file (ISO 10303-21): its instances are found in one pass through the text, which must
/// outlive it, and each is read when it is asked for. Lists within lists are followed to a certain
/// depth only, and instances so often only, that a file cannot ask for more time than its size is
/// worth.
class StepFile {
 public:
  /// Whether instances with a keyword are to be found.
  using Wanted = bool (*)(std::string_view keyword);

  /// Throws `SourceError`: the text is malformed, or cut off. `file` is for messages, and must
  /// outlive it.
  StepFile(const std::string& file, std::string_view text, Wanted wanted);

  /// The first schema that the head names; empty for none.
  const std::string& schema() const { return schema_; }

  /// The instances with a keyword, in their order.
  const std::vector<const StepInstance*>& all(std::string_view keyword) const;

  /// The instance of a number, if it is one of those that are wanted.
  const StepInstance* find(std::uint64_t number) const;

  /// The instance that a value refers to; null for none, or for one with another keyword.
  const StepInstance* find(const StepValue& reference) const;
  const StepInstance* find(const StepValue& reference, std::string_view keyword) const;

  /// The values of an instance. Throws `SourceError` when far more is read than the file has.
  StepFields fields_of(const StepInstance& instance) const;

  /// Counts what is read, or copied, of an instance; throws as above.
  void charge(const StepInstance& instance, std::size_t size) const;

 private:
  void sort_instances();

  const std::string& file_;
  std::string schema_;
  std::vector<StepInstance> instances_;  ///< by number
  std::map<std::string_view, std::vector<const StepInstance*>> by_keyword_;
  std::size_t most_read_;
  mutable std::size_t read_ = 0;
};

}  // namespace veldra::kit

#endif
