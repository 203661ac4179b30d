// SPDX-License-Identifier: GPL-2.0-or-later
//
// A host that tells the kinds of errors apart without a header of the runtime, in each C++ from
// C++14 on:
//
//   host <folder>
#include <veldra/veldra.hpp>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <string>

namespace {

using veldra::ErrorKind;
using veldra::Library;

int failures = 0;

void expect(const char* what, ErrorKind kind, const std::function<void()>& call) {
  try {
    call();
    std::cerr << what << ": nothing was thrown\n";
  } catch (...) {
    if (veldra::error_kind() == kind && !veldra::error_text().empty()) return;
    std::cerr << what << ": kind " << static_cast<int>(veldra::error_kind()) << ", "
              << veldra::error_text() << "\n";
  }
  ++failures;
}

void write(const std::string& path, const std::string& text) { std::ofstream(path) << text; }

void expect_errors_of_opening(const std::string& folder) {
  write(folder + "/text", std::string(5000, 'x'));
  write(folder + "/empty", "");
  expect("a text file", ErrorKind::NotALibrary,
         [&] { Library::openExisting((folder + "/text").c_str(), true); });
  expect("an empty file", ErrorKind::NotALibrary,
         [&] { Library::openExisting((folder + "/empty").c_str(), true); });
  expect("a missing file", ErrorKind::Other,
         [&] { Library::openExisting((folder + "/missing").c_str(), true); });
}

void expect_errors_of_objects(const std::string& path) {
  const auto library = Library::create(path.c_str(), veldra::Unit::Millimetres, "");
  const auto oak = veldra::Material::create("Oak");
  oak->save(library);
  expect("a name that is taken", ErrorKind::NotUnique,
         [&] { library->save(veldra::Material::create("Oak")); });
  expect("an object that is not there", ErrorKind::NotFound,
         [&] { library->remove<veldra::Tag>(99); });
  expect("an object that is in use", ErrorKind::InUse,
         [&] { library->remove<veldra::MaterialType>(oak->type()->id()); });
  const unsigned short half[] = {0xD800, 0};
  expect("half of a character", ErrorKind::MalformedText,
         [&] { library->save(veldra::Material::create(half)); });
  const veldra::Library::Snapshot snapshot(*library);
  expect("a write within a snapshot", ErrorKind::Transaction,
         [&] { library->save(veldra::Material::create("Ash")); });
}

void expect_errors_of_reading_only(const std::string& path) {
  const auto library = Library::open(path.c_str(), true);
  expect("removal from a library for reading", ErrorKind::ReadOnly,
         [&] { library->remove<veldra::Material>(1); });
  expect("saving into a library for reading", ErrorKind::ReadOnly,
         [&] { library->save(veldra::Material::create("Ash")); });
}

void expect_busy(const std::string& path) {
  const auto holder = Library::open(path.c_str(), false);
  const auto other = Library::open(path.c_str(), false);
  const Library::Transaction transaction(*holder);
  expect("a file that another handle holds", ErrorKind::Busy,
         [&] { other->save(veldra::Material::create("Ash")); });
}

}  // namespace

int main(int count, char** values) {
  if (count != 2) return 2;
  const std::string folder = values[1];
  const std::string path = folder + "/walls.lib";
  expect_errors_of_opening(folder);
  expect_errors_of_objects(path);
  expect_errors_of_reading_only(path);
  expect_busy(path);
  return failures == 0 ? 0 : 1;
}
