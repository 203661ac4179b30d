// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_OTHERWISE_HPP
#define VELDRA_BENCH_OTHERWISE_HPP

#include "records.hpp"

#include <memory>
#include <string>

// What a program would use instead of the library, as far as it is there where the benchmarks are
// built.

namespace veldra_bench {

/// Reads all materials of a library file by SQLiteCpp, in the order of their ids.
class MaterialReader {
 public:
  virtual ~MaterialReader() = default;
  virtual Document read() = 0;
};

/// Null where SQLiteCpp is missing.
std::unique_ptr<MaterialReader> sqlitecpp_reader(const std::string& path);
bool has_sqlitecpp();

/// The whole document as JSON. It is written beside the file first and takes its place when it is
/// on the disk.
void write_json(const Document& document, const std::string& path);
Document read_json(const std::string& path);
bool has_json();

}  // namespace veldra_bench

#endif
