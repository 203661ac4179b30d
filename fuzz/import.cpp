// SPDX-License-Identifier: GPL-2.0-or-later
//
// The input is a file that the program imports: IDF, epJSON, honeybee, gbXML, IFC, a workbook, a
// table or the program's own JSON, told by its content. Whatever it holds, the import works or ends
// with a sentence for people, and then the library is as it was. What was imported can be exported
// and imported again, with the same text.
//
// The command is run as a whole, into a library that it makes and into one that has objects of the
// names that the inputs use. The fuzzer takes one of these ways for each input, which its length
// chooses; the replay takes them all.

#include "program.hpp"

#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

namespace {

using veldra_fuzz::expect;
using veldra_fuzz::run;

using veldra_tests::file_exists;
using veldra_tests::read_file;
using veldra_tests::write_file;

#ifdef VELDRA_REPLAY
constexpr bool every_way = true;
#else
constexpr bool every_way = false;
#endif

constexpr const char* stored_objects = R"({
  "format": "veldra", "version": 1, "library": {"unit": "in", "locale": "de", "region": "CH"},
  "tags": ["a", "spare", "\udbff\udffd\udbff\udffd end of the pretence"], "layers": ["cut"],
  "custom_properties": [{"name": "p", "object_type": 0}],
  "materials": [
    {"name": "Brick", "code": "B", "type": "Opaque", "tags": ["a"], "thicknesses": [4, 8],
     "custom_values": {"Density [kg/m3]": "1800"}, "cut_layer": "cut"},
    {"name": "Wool", "code": "W", "custom_values": {"p": "of materials"},
     "common_custom_values": {"p": "of all"}}],
  "compositions": [
    {"name": "Wall", "type": "wall", "tags": ["a"],
     "layers": [{"material": "Brick", "thickness": 8, "function": 1}, {"material": "Wool"}]}]
})";

class Place {
 public:
  Place() {
    write_file(source, stored_objects);
    expect(run({"import", stored, source}).empty(), "the library cannot be made");
    stored_bytes = read_file(stored);
  }

  const veldra_tests::TemporaryFolder folder;
  const std::string source = folder / "a.idf";
  const std::string made = folder / "made.lib";
  const std::string stored = folder / "stored.lib";
  std::string stored_bytes;
};

Place& place() {
  static Place place;
  return place;
}

void import_into_new(const std::vector<std::string>& options) {
  const std::string& library = place().made;
  std::string notes;
  std::vector<std::string> command = {"import", library, place().source};
  command.insert(command.end(), options.begin(), options.end());
  const std::string sentence = run(command, &notes);
  const bool nothing = notes.find("no materials and no constructions") != std::string::npos;
  expect((sentence.empty() && !nothing) == file_exists(library),
         "a library without an import, or none with one");
  if (!file_exists(library)) return;
  veldra_fuzz::expect_round_trip(library, place().folder);
  std::remove(library.c_str());
}

void import_into_stored(const char* on_conflict) {
  const std::string& library = place().stored;
  const std::vector<std::string> command = {"import", library, place().source, "--on-conflict",
                                            on_conflict};
  std::vector<std::string> pretending = command;
  pretending.push_back("--dry-run");
  const bool would_work = run(pretending).empty();
  expect(read_file(library) == place().stored_bytes, "the library changed though nothing was done");
  const std::string sentence = run(command);
  expect(sentence.empty() == would_work, "the dry run says something else: " + sentence);
  if (!sentence.empty()) {
    expect(read_file(library) == place().stored_bytes, "the library changed though it failed");
    return;
  }
  expect(veldra_tests::damage(library).empty(), "the library is damaged");
  veldra_fuzz::expect_round_trip(library, place().folder);
  write_file(library, place().stored_bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  write_file(place().source, std::string(reinterpret_cast<const char*>(data), size));
  const std::size_t way = size % 6;
  if (every_way || way == 4) import_into_new({});
  if (every_way || way == 5) import_into_new({"--keep-unknown"});
  constexpr const char* decisions[] = {"fail", "use", "overwrite", "rename"};
  for (std::size_t n = 0; n != std::size(decisions); ++n) {
    if (every_way || way == n) import_into_stored(decisions[n]);
  }
  return 0;
}
