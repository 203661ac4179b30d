// SPDX-License-Identifier: GPL-2.0-or-later
//
// The input is a file. Whatever it holds, opening and reading it throws nothing but what is
// documented, and reading a library does not change its file.
//
// An input is either a whole file, or a list of changes to a small library, four bytes each: where
// (three bytes) and what. libFuzzer gets further with the second, since its changes stay small.

#include "reliability/all_reads.hpp"
#include "reliability/fault_vfs.hpp"
#include "reliability/scene.hpp"
#include "support/temporary.hpp"

#include <cstdint>
#include <cstdlib>
#include <iostream>

namespace {

using veldra_tests::FaultVfs;
using veldra_tests::Scene;
using veldra_tests::Start;
using veldra_tests::Thrown;

[[noreturn]] void fail(const std::string& what, const Thrown& thrown) {
  std::cerr << what << ": " << thrown << std::endl;
  std::abort();
}

struct Place {
  Scene scene{Start::Current, ""};
  std::string whole = veldra_tests::read_file(scene.path());
};

Place& place() {
  static Place place;
  return place;
}

std::string file_of(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  if (bytes.compare(0, 6, "SQLite") == 0) return bytes;
  std::string file = place().whole;
  for (; size >= 4; data += 4, size -= 4) {
    const std::size_t at = (data[0] << 16 | data[1] << 8 | data[2]) % file.size();
    file[at] = static_cast<char>(data[3]);
  }
  return file;
}

void expect_unchanged(const std::string& path, const std::string& before, const char* by) {
  if (veldra_tests::read_file(path) != before) fail(by + std::string(" has changed the file"), {});
}

// Opens the library; null when it does not open, which writes nothing.
std::shared_ptr<veldra::Library> open(const std::string& path) {
  const std::string before = veldra_tests::read_file(path);
  const bool empty = veldra_tests::counts_as_empty(path);
  std::shared_ptr<veldra::Library> library;
  const Thrown thrown = veldra_tests::thrown_by(
      [&] { library = veldra::Library::open(FaultVfs::name_of(path).c_str(), false); });
  if (!veldra_tests::is_documented_for_opening(thrown)) fail("open", thrown);
  if (library == nullptr && !empty) expect_unchanged(path, before, "opening in vain");
  return library;
}

void read(const std::string& path) {
  auto library = open(path);
  if (library == nullptr) return;
  const std::string before = veldra_tests::read_file(path);  // opening may have migrated it
  for (const auto& result : veldra_tests::read_everything(*library)) {
    if (!veldra_tests::is_documented_for_reading(result.thrown)) fail(result.read, result.thrown);
  }
  library.reset();
  expect_unchanged(path, before, "reading");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string path = place().scene.path();
  veldra_tests::write_file(path, file_of(data, size));
  read(path);
  return 0;
}
