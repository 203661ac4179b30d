// SPDX-License-Identifier: GPL-2.0-or-later
//
// The input is a plan file that the program applies. Whatever it holds, the plan is carried out or
// ends with a sentence for people, and then the library is as it was. A dry run says the same as
// the command. What the plan says of the place of the library is not followed.

#include "program.hpp"

#include <cstdint>

namespace {

using veldra_fuzz::expect;
using veldra_fuzz::run;
using veldra_tests::read_file;
using veldra_tests::write_file;

/// The plans of the corpus are for these objects.
constexpr const char* stored_objects = R"({
  "format": "veldra", "version": 1, "library": {"unit": "mm"}, "tags": ["old"],
  "materials": [
    {"name": "Brick", "code": "B", "manufacturer": "Smith", "tags": ["old"]},
    {"name": "Wool", "custom_values": {"Density [kg/m3]": "30"}},
    {"name": "Felt"}],
  "compositions": [
    {"name": "Wall", "layers": [{"material": "Brick", "thickness": 240}, {"material": "Wool"}]}]
})";

class Place {
 public:
  Place() {
    write_file(plan, stored_objects);
    expect(run({"create", library, "--guid", "office"}).empty(), "no library can be made");
    expect(run({"import", library, plan}).empty(), "the library cannot be filled");
    bytes = read_file(library);
  }

  const veldra_tests::TemporaryFolder folder;
  const std::string plan = folder / "plan.json";
  const std::string library = folder / "office.lib";
  std::string bytes;
};

Place& place() {
  static Place place;
  return place;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto& library = place().library;
  write_file(place().plan, std::string(reinterpret_cast<const char*>(data), size));
  const bool would_work = run({"apply", place().plan, library, "--dry-run"}).empty();
  expect(read_file(library) == place().bytes, "the library changed though nothing was done");
  const std::string sentence = run({"apply", place().plan, library});
  expect(sentence.empty() == would_work, "the dry run says something else: " + sentence);
  if (!sentence.empty()) {
    expect(read_file(library) == place().bytes, "the library changed though it failed");
    return 0;
  }
  expect(veldra_tests::damage(library).empty(), "the library is damaged");
  veldra_fuzz::expect_round_trip(library, place().folder);
  write_file(library, place().bytes);
  return 0;
}
