// SPDX-License-Identifier: GPL-2.0-or-later
//
// The input is a file that the program imports: IDF, epJSON, honeybee, a table or the program's own
// JSON, told by its content. Whatever it holds, the import works or ends with a sentence for
// people, and then the library is as it was. What was imported can be exported and imported again,
// with the same text.
//
// The command is run as a whole, into a library that it makes and into one that has objects of the
// names that the inputs use. The fuzzer takes one of these ways for each input, which its length
// chooses; the replay takes them all.

#include "support/database.hpp"
#include "support/temporary.hpp"
#include "support/thrown.hpp"

#include "failure.hpp"
#include "host.hpp"
#include "text.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace {

using veldra_tests::file_exists;
using veldra_tests::read_file;
using veldra_tests::write_file;

void expect(bool condition, const std::string& what) {
  if (condition) return;
  std::cerr << what << std::endl;
  std::abort();
}

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

// Runs a command of the program; gives the sentence with which it failed, and in `notes` what it
// had to say besides. A dry run that tells of clashes fails without throwing.
std::string run(std::vector<std::string> arguments, std::string* notes = nullptr) {
  std::string sentence;
  const auto thrown = veldra_tests::thrown_by([&] {
    veldra_tool::Host host;
    std::reverse(arguments.begin(), arguments.end());  // as the parser wants them
    try {
      host.arguments.parse(arguments);
    } catch (const veldra_tool::Failure& failure) {
      sentence = failure.what();
    }
    if (host.status == veldra_tool::Status::Failed) sentence = host.notes;
    if (notes != nullptr) *notes = host.notes;
  });
  if (!(thrown == "")) std::cerr << thrown << std::endl;
  expect(thrown == "", "something else than a sentence was thrown");
  return sentence;
}

class Place {
 public:
  Place() {
    veldra_tool::use_unicode();
    write_file(source, stored_objects);
    expect(run({"import", stored, source}).empty(), "the library cannot be made");
    stored_bytes = read_file(stored);
  }

  const veldra_tests::TemporaryFolder folder;
  const std::string source = folder / "a.idf";
  const std::string made = folder / "made.lib";
  const std::string stored = folder / "stored.lib";
  const std::string exported = folder / "exported.json";
  std::string stored_bytes;
};

Place& place() {
  static Place place;
  return place;
}

std::string export_of(const std::string& library) {
  const std::string sentence = run({"export", library, "-o", place().exported, "--force"});
  expect(sentence.empty(), "cannot be exported: " + sentence);
  return read_file(place().exported);
}

void expect_round_trip(const std::string& library) {
  const std::string text = export_of(library);
  const std::string again = place().folder / "again.lib";
  const std::string sentence = run({"import", again, place().exported});
  expect(sentence.empty(), "what was exported cannot be imported: " + sentence);
  const std::string second = export_of(again);
  if (second != text) std::cerr << text << second;
  expect(second == text, "what was exported is exported otherwise after its import");
  std::remove(again.c_str());
}

void import_into_new() {
  const std::string& library = place().made;
  std::string notes;
  const std::string sentence = run({"import", library, place().source}, &notes);
  const bool nothing = notes.find("no materials and no constructions") != std::string::npos;
  expect((sentence.empty() && !nothing) == file_exists(library),
         "a library without an import, or none with one");
  if (!file_exists(library)) return;
  expect_round_trip(library);
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
  expect_round_trip(library);
  write_file(library, place().stored_bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  write_file(place().source, std::string(reinterpret_cast<const char*>(data), size));
  const std::size_t way = size % 5;
  if (every_way || way == 4) import_into_new();
  constexpr const char* decisions[] = {"fail", "use", "overwrite", "rename"};
  for (std::size_t n = 0; n != std::size(decisions); ++n) {
    if (every_way || way == n) import_into_stored(decisions[n]);
  }
  return 0;
}
