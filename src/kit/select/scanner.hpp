// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_SELECT_SCANNER_HPP
#define VELDRA_KIT_SELECT_SCANNER_HPP

#include "kit/select/comparison.hpp"

#include <optional>
#include <string>

namespace veldra::kit {

/// Reads the words of a filter from left to right.
class Scanner {
 public:
  explicit Scanner(const std::string& text) : text_(text) {}

  /// Throws `FilterError` with what stands here in the place of something.
  [[noreturn]] void expect(const std::string& what) const;

  /// Throws `FilterError` about a place.
  [[noreturn]] void refuse(std::size_t place, const std::string& sentence) const;

  bool at_end();

  /// Where the next word begins.
  std::size_t place();

  /// Passes a character or a word, if it stands here. Words are in whatever case.
  bool pass(char character);
  bool pass_word(const std::string& word);

  /// The name of a field, in back-quotes or without.
  std::string field_name();

  std::optional<Operator> comparing_operator();

  /// A value for a field, without its quotes, with its unit.
  std::string value(const FieldDescription& field, Unit unit);

 private:
  void skip_blanks();
  std::size_t end_of_run(const char* ends) const;
  std::string quoted(const std::string& what);
  std::string number_with_unit(const FieldDescription& field, Unit unit);

  const std::string& text_;
  std::size_t at_ = 0;
};

}  // namespace veldra::kit

#endif
