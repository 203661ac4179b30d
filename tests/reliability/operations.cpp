// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/operation_parts.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace veldra_tests {

namespace {

using Kind = Operation::Kind;

// Opening.

void name_the_file(Scene& scene) { scene.text = scene.name(); }
void create(Scene& scene) { scene.create(); }
void open(Scene& scene) { scene.library = Library::open(scene.text, false); }
void open_read_only(Scene& scene) { scene.library = Library::open(scene.text, true); }

void open_existing(Scene& scene) { scene.library = Library::openExisting(scene.text, false); }
void open_existing_read_only(Scene& scene) {
  scene.library = Library::openExisting(scene.text, true);
}

// Several operations in one transaction.

void choose_for_several(Scene& scene) {
  change_material(scene);
  scene.objects.composition = scene.library->get<Composition>("spare composition");
  choose_roof(scene);
}

void do_several(Scene& scene) {
  scene.library->save(scene.objects.material);
  scene.library->remove(scene.objects.composition);
  scene.library->copy<Composition>(scene.source, scene.ids);
  scene.found<Composition>().object = scene.library->get<Composition>("Roof");
  scene.library->region("Ostschweiz");
}

void do_several_and_commit(Scene& scene) {
  Library::Transaction transaction(*scene.library);
  do_several(scene);
  transaction.commit();
}

void do_several_and_roll_back(Scene& scene) {
  const Library::Transaction transaction(*scene.library);
  do_several(scene);
}

std::vector<Operation> opening() {
  return {
      {"create a missing file", Kind::Making, Start::Missing, name_the_file, create},
      {"create in an empty file", Kind::Making, Start::Empty, name_the_file, create},
      {"create what is there", Kind::Opening, Start::Current, name_the_file, create},
      {"migrate version 150201", Kind::Making, Start::Version150201, name_the_file, open},
      {"migrate version 150301", Kind::Making, Start::Version150301, name_the_file, open},
      {"migrate and open read-only", Kind::Making, Start::Version150301, name_the_file,
       open_read_only},
      {"migrate what must be there", Kind::Making, Start::Version150201, name_the_file,
       open_existing},
      {"open", Kind::Opening, Start::Current, name_the_file, open},
      {"open what must be there", Kind::Opening, Start::Current, name_the_file, open_existing},
      {"open what must be there read-only", Kind::Opening, Start::Current, name_the_file,
       open_existing_read_only},
      {"open read-only", Kind::Opening, Start::Current, name_the_file, open_read_only},
  };
}

std::vector<Operation> holding() {
  return {operation_on_current(Kind::Holding, "several in one transaction", choose_for_several,
                               do_several_and_commit),
          operation_on_current(Kind::Holding, "several for nothing", choose_for_several,
                               do_several_and_roll_back)};
}

}  // namespace

std::vector<Operation> joined(const std::vector<std::vector<Operation>>& groups) {
  std::vector<Operation> all;
  for (const auto& group : groups) all.insert(all.end(), group.begin(), group.end());
  return all;
}

std::vector<Operation> writing(const std::vector<std::tuple<const char*, Step, Step>>& operations) {
  std::vector<Operation> result;
  for (const auto& [name, prepare, run] : operations) {
    result.push_back(operation_on_current(Kind::Writing, name, prepare, run));
  }
  return result;
}

const std::vector<Operation>& operations() {
  static const auto all = joined({opening(), saving_operations(), removing_operations(),
                                  copying_operations(), holding(), reading_operations()});
  return all;
}

const Operation& operation_named(const char* name) {
  const std::string wanted(name);
  const auto found = std::find_if(operations().begin(), operations().end(),
                                  [&](const Operation& each) { return each.name == wanted; });
  if (found == operations().end()) throw std::runtime_error("no operation " + wanted);
  return *found;
}

std::vector<Operation> writing_operations() {
  std::vector<Operation> writing;
  std::copy_if(operations().begin(), operations().end(), std::back_inserter(writing),
               [](const Operation& operation) {
                 return operation.kind != Kind::Opening && operation.kind != Kind::Reading &&
                        operation.kind != Kind::Merging;
               });
  return writing;
}

}  // namespace veldra_tests
