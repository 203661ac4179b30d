// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_PROBLEM_HPP
#define VELDRA_KIT_EXCHANGE_PROBLEM_HPP

#include <veldra/kit/exchange.hpp>

#include <string>

namespace veldra::kit {

/// Fails because of what stands in a line of a source; the line 0 is the source as a whole.
[[noreturn]] inline void fail_at(const std::string& file, unsigned line,
                                 const std::string& sentence, const std::string& object = "") {
  throw SourceError({file, line, object, sentence});
}

}  // namespace veldra::kit

#endif
