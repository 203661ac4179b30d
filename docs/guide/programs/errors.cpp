// SPDX-License-Identifier: GPL-2.0-or-later
#include <veldra/veldra.hpp>

#include <functional>
#include <iostream>

// What a user can do about an error. To be called while an exception is handled.
const char* advice() {
  switch (veldra::error_kind()) {
    case veldra::ErrorKind::Busy:
      return "Another program is writing. Try again.";
    case veldra::ErrorKind::ReadOnly:
      return "The library can only be read.";
    case veldra::ErrorKind::Full:
      return "The disk is full.";
    case veldra::ErrorKind::Damaged:
      return "The library is damaged. Restore a backup.";
    case veldra::ErrorKind::NotALibrary:
      return "This file is no library.";
    case veldra::ErrorKind::NotUnique:
      return "The name is taken.";
    default:
      return "Something else went wrong.";
  }
}

void attempt(const char* title, const std::function<void()>& work) {
  try {
    work();
    std::cout << title << ": done\n";
  } catch (...) {  // of the library, of the database, and of malformed text
    std::cout << title << ": " << advice() << "\n  log: " << veldra::error_text() << '\n';
  }
}

int main() {
  auto office = veldra::Library::create("office.lib", veldra::Unit::Millimetres, "");
  veldra::Material::create("Brick")->save(office);
  auto reader = veldra::Library::open("office.lib", true);

  attempt("save", [&] { veldra::Material::create("Brick")->save(office); });
  attempt("save for reading", [&] { veldra::Material::create("Oak")->save(reader); });
  attempt("locale", [&] { reader->locale("de_CH"); });
  attempt("missing file", [] { veldra::Library::open("missing.lib", false); });

  office->backup("backup.lib");
  attempt("backup", [&] { office->backup("backup.lib"); });
  office->purge<veldra::Material>();
  attempt("restore", [&] { office->restoreFrom("backup.lib"); });
  std::cout << office->count<veldra::Material>() << " material\n";
}
