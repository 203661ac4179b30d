// SPDX-License-Identifier: GPL-2.0-or-later
//
// A host over an installed library: data, calls from the library into the host, and exceptions of
// all families cross the boundary both ways.
#include <veldra/veldra.hpp>

#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>

#include <utf8.h>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

int failures = 0;

void expect(bool holds, const std::string& what) {
  std::cout << (holds ? "ok      " : "FAILED  ") << what << '\n';
  if (!holds) ++failures;
}

template <class Exception, class Call>
void expect_thrown(const std::string& what, Call call) {
  bool caught = false;
  try {
    call();
  } catch (const Exception&) {
    caught = true;
  } catch (...) {
  }
  expect(caught, what);
}

struct RefusedByHost : std::runtime_error {
  RefusedByHost() : std::runtime_error("the host refuses") {}
};

class Refusing : public veldra::Library::Reactor {
  void objectSaved(veldra::Library&, const veldra::ObjectKey&) override { throw RefusedByHost(); }
};

void objects_survive_a_round_trip(const std::string& file) {
  auto library = veldra::Library::create(file.c_str(), veldra::Unit::Millimetres, "");
  auto oak = veldra::Material::create("Oak");
  oak->thicknesses(veldra::toModify) = {16.0, 22.0};
  oak->save(library);
  library.reset();

  library = veldra::Library::open(file.c_str(), true);
  const auto read = library->get<veldra::Material>("Oak");
  expect(read != nullptr && *read == *oak, "a material is read as it was saved");
  expect(library->count<veldra::MaterialType>() == 13, "a new library has its material types");
}

void own_exceptions_are_caught_by_type(const std::string& file) {
  auto library = veldra::Library::open(file.c_str(), false);
  expect_thrown<veldra::ObjectNotFound>("veldra::ObjectNotFound is caught by type",
                                        [&] { library->remove<veldra::Tag>(99); });
  expect_thrown<veldra::Exception>("veldra::Exception is caught as the base",
                                   [&] { library->remove<veldra::Tag>(99); });
  expect_thrown<veldra::ConsistencyError>("veldra::ObjectNotUnique is caught as its base",
                                          [&] { library->save(veldra::Material::create("Oak")); });
  auto reading = veldra::Library::open(file.c_str(), true);
  expect_thrown<veldra::LibraryReadOnly>("veldra::LibraryReadOnly is caught by type",
                                         [&] { reading->region("EU"); });
}

void exceptions_of_the_runtime_are_caught_by_type(const std::string& file) {
  expect_thrown<odb::sqlite::database_exception>(
      "odb::sqlite::database_exception is caught by type",
      [&] { veldra::Library::open((file + ".missing").c_str(), false); });
  expect_thrown<odb::exception>("odb::exception is caught as the base",
                                [&] { veldra::Library::open((file + ".missing").c_str(), false); });
  expect_thrown<std::exception>("... and as std::exception",
                                [&] { veldra::Library::open((file + ".missing").c_str(), false); });

  struct Nested : veldra::Library::Reactor {
    void objectSaved(veldra::Library& library, const veldra::ObjectKey&) override {
      library.save(veldra::Tag::create("within"));
    }
  } nested;
  auto library = veldra::Library::open(file.c_str(), false);
  library->setReactor(&nested);
  expect_thrown<odb::already_in_transaction>("odb::already_in_transaction is caught by type", [&] {
    library->save(veldra::Tag::create("without"));
  });
}

void exceptions_of_text_are_caught_by_type() {
  expect_thrown<utf8::invalid_utf8>("utf8::invalid_utf8 is caught by type",
                                    [] { veldra::String text("\xFF"); });
}

void exceptions_of_the_host_pass(const std::string& file) {
  auto library = veldra::Library::open(file.c_str(), false);
  Refusing refusing;
  library->setReactor(&refusing);
  expect_thrown<RefusedByHost>("an exception of the host passes through the library",
                               [&] { library->save(veldra::Tag::create("refused")); });
  expect(library->get<veldra::Tag>("refused") == nullptr, "... and ends the operation");
}

void kinds_of_objects_are_told_apart() {
  struct Probe : veldra::StructuralAsset {};
  const std::shared_ptr<veldra::Asset> asset = std::make_shared<Probe>();
  expect(std::dynamic_pointer_cast<veldra::StructuralAsset>(asset) != nullptr,
         "a structural asset is one to dynamic_cast");
  expect(std::dynamic_pointer_cast<veldra::ThermalAsset>(asset) == nullptr,
         "... and no thermal asset");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string file = argv[1];
  objects_survive_a_round_trip(file);
  own_exceptions_are_caught_by_type(file);
  exceptions_of_the_runtime_are_caught_by_type(file);
  exceptions_of_text_are_caught_by_type();
  exceptions_of_the_host_pass(file);
  kinds_of_objects_are_told_apart();
  return failures == 0 ? 0 : 1;
}
