// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_ALL_READS_HPP
#define VELDRA_TESTS_RELIABILITY_ALL_READS_HPP

#include "support/thrown.hpp"

#include <veldra/veldra.hpp>

#include <string>
#include <vector>

namespace veldra_tests {

/// What a read of a library threw, if anything.
struct ReadResult {
  std::string read;
  Thrown thrown;
};

/// Reads all that a library has in every way that there is, looks at every value of what comes,
/// and copies, compares and describes it.
std::vector<ReadResult> read_everything(const veldra::Library& library);

/// Whether a file has no row by which it is known as a library. It counts as an empty one then, and
/// becomes a new library when it is opened.
bool counts_as_empty(const std::string& path);

/// Whether a read of a file that others have changed may throw this.
bool is_documented_for_reading(const Thrown& thrown);

/// The same for opening it.
bool is_documented_for_opening(const Thrown& thrown);

/// The same for saving, removing and copying.
bool is_documented_for_writing(const Thrown& thrown);

/// Writes to a library in every way that there is, in this order: saving, changing, removing,
/// purging.
std::vector<ReadResult> write_everything(veldra::Library& library);

}  // namespace veldra_tests

#endif
