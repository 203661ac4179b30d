// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_ERROR_HPP
#define VELDRA_KIT_ERROR_HPP

#include <veldra/kit/export.hpp>

#include <stdexcept>

namespace veldra::kit {

/// The base of what the kit throws by itself: something that was asked for makes no sense. `what()`
/// is one sentence in English for people, in UTF-8, that begins in lower case and has no full stop.
///
/// The sentence quotes what was asked for as it came. A front that shows it on a terminal makes
/// control characters harmless first.
class VELDRA_KIT_EXPORT Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;

  /// Copies the error.
  Error(const Error& other) = default;

  /// Destroys the error.
  ~Error() override;
};

}  // namespace veldra::kit

#endif
