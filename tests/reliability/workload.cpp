// SPDX-License-Identifier: GPL-2.0-or-later
#include "reliability/workload.hpp"

#include "reliability/fault_vfs.hpp"
#include "reliability/scene.hpp"
#include "support/builders.hpp"
#include "support/database.hpp"
#include "support/names.hpp"

#include <random>

namespace veldra_tests {

namespace {

std::string name_of(unsigned n) { return "step " + std::to_string(n); }

}  // namespace

Workload::Workload(std::shared_ptr<Library> library, std::shared_ptr<const Library> source,
                   unsigned seed)
    : library_(std::move(library)), source_(std::move(source)), seed_(seed) {}

void Workload::step(unsigned n) {
  std::mt19937 random(seed_ * 7919 + n);
  switch (random() % 8) {
    case 0:
    case 1:
      return save_new(n);
    case 2:
      library_->save(full_material(name_of(n)));
      return;
    case 3:
      library_->save(named<Layer>(name_of(n)));
      return;
    case 4:
      return change(random());
    case 5:
      return remove(random());
    case 6:
      return random() % 8 == 0 ? library_->purge() : library_->locale(name_of(n).c_str());
    default:
      return copy(random());
  }
}

void Workload::save_new(unsigned n) { library_->save(full_composition(name_of(n))); }

void Workload::change(unsigned n) {
  std::vector<std::shared_ptr<Composition>> all;
  library_->get(all);
  if (all.empty()) return;
  const auto& composition = all[n % all.size()];
  composition->comments(("changed by " + std::to_string(n)).c_str());
  composition->removeLayer(composition->layers().size() - 1);
  composition->appendLayer(Composition::Layer(named<Material>("of " + std::to_string(n)),
                                              Material::Function::None, 4.0));
  library_->save(composition);
}

void Workload::remove(unsigned n) {
  std::vector<std::shared_ptr<Composition>> all;
  library_->get(all);
  if (all.size() > 1) library_->remove(all[n % all.size()]);
}

void Workload::copy(unsigned n) {
  std::vector<std::shared_ptr<Composition>> all;
  source_->get(all);
  library_->copy<Composition>(source_, {all[n % all.size()]->id()});
}

std::vector<std::vector<std::string>> states_of(const std::string& path,
                                                const std::string& source_path, unsigned seed,
                                                unsigned steps) {
  const auto library = Library::open(FaultVfs::name_of(path).c_str(), false);
  const auto source = Library::open(FaultVfs::name_of(source_path).c_str(), true);
  std::vector<std::vector<std::string>> states(steps);
  std::vector<std::string>* current = nullptr;
  RecordingReactor reactor;
  reactor.decision = RecordingReactor::UseExisting;
  reactor.watch_removals([&] { current->push_back(dump(path)); });
  library->setReactor(&reactor);
  Workload workload(library, source, seed);
  for (unsigned n = 0; n != steps; ++n) {
    current = &states[n];
    current->push_back(dump(path));
    workload.step(n);
    current->push_back(dump(path));
  }
  return states;
}

}  // namespace veldra_tests
