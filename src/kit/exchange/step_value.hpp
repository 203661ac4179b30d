// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_STEP_VALUE_HPP
#define VELDRA_KIT_EXCHANGE_STEP_VALUE_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace veldra::kit {

/// A value as it stands in a STEP file (ISO 10303-21): a part of the text, read when it is asked
/// for. The text must outlive it, and is one that `StepFile` has found well-formed.
class StepValue {
 public:
  /// A value that is not there.
  StepValue() = default;

  /// The value in a part of a text that may have blanks and comments around it.
  explicit StepValue(std::string_view text);

  /// Whether nothing is given: `$`, `*`, or a field beyond the last one.
  bool is_missing() const { return text_.empty() || text_ == "$" || text_ == "*"; }

  /// The number of the instance that is meant.
  std::optional<std::uint64_t> reference() const;

  /// A string, in UTF-8.
  std::optional<std::string> text() const;

  /// A number, if it is a finite one.
  std::optional<double> number() const;

  /// An enumeration without its points; empty for other values.
  std::string_view enumeration() const;

  /// The type that stands before a value, as in `IFCREAL(1.)`; empty for none.
  std::string_view type() const;

  /// The value behind such a type; the value itself where there is none.
  StepValue content() const;

  /// As it is written.
  std::string_view written() const { return text_; }

  /// Calls `work` with each value of a list; of a value that is no list, with none.
  template <class Work>
  void for_each(Work work) const {
    for (auto rest = list(); !rest.empty();) work(take(rest));
  }

  /// Takes the first value off a part of a text that is a list without its parentheses.
  static StepValue take(std::string_view& rest);

 private:
  std::string_view list() const;

  std::string_view text_;
};

/// The text of a string as it stands between the apostrophes, in UTF-8.
std::string text_of_step(std::string_view encoded);

/// The text as a string, with its apostrophes.
std::string step_text(std::string_view text);

/// The number as a real.
std::string step_real(double number);

}  // namespace veldra::kit

#endif
