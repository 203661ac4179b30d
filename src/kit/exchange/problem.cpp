// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/kit/exchange.hpp>

#include "kit/text/quoted.hpp"

#include <fmt/format.h>

namespace veldra::kit {

std::string SourceProblem::text() const {
  const std::string place = line > 0 ? fmt::format(", line {}", line) : "";
  return fmt::format("{}{}: {}", quoted(file), place, sentence);
}

SourceError::SourceError(const SourceProblem& problem) : Error(problem.text()), problem_(problem) {}

SourceError::~SourceError() = default;

SourceClashes::SourceClashes(std::vector<SourceProblem> problems)
    : SourceError(problems.front()), problems_(std::move(problems)) {}

SourceClashes::~SourceClashes() = default;

}  // namespace veldra::kit
