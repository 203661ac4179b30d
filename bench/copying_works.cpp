// SPDX-License-Identifier: GPL-2.0-or-later
#include "counters.hpp"
#include "work.hpp"

#include <cstdio>

namespace veldra_bench {

namespace {

const double millimetres_of_an_inch = 25.4;

/// A full library in inches into new ones in millimetres.
class CopyAll {
 public:
  explicit CopyAll(Workshop& workshop)
      : workshop_(workshop),
        veldra_source_(open_veldra(workshop.sample().path())),
        plain_source_(open_plain(workshop.sample().path())) {}

  void prepare() {
    destinations_.reset();
    destinations_ = new_pair(workshop_);
  }

  void veldra(Digest* digest) {
    destinations_->veldra->copyAll(veldra_source_);
    if (digest != nullptr) digest->add(digest_of_objects(destinations_->veldra_path));
  }

  void plain(Digest* digest) {
    plain_copy_all(destinations_->plain.get(), plain_source_.get(), millimetres_of_an_inch);
    if (digest != nullptr) digest->add(digest_of_objects(destinations_->plain_path));
  }

 private:
  Workshop& workshop_;
  std::shared_ptr<veldra::Library> veldra_source_;
  PlainLibrary plain_source_;
  std::unique_ptr<Pair> destinations_;
};

Work copy_all(Workshop& workshop) {
  auto copy = std::make_shared<CopyAll>(workshop);
  return {[copy](Digest* digest) { copy->veldra(digest); },
          [copy](Digest* digest) { copy->plain(digest); }, [copy] { copy->prepare(); }};
}

double mebibytes(double bytes) { return bytes / (1024 * 1024); }

void print(const char* what, double bytes) {
  std::printf("%-52s %8.1f MiB\n", what, mebibytes(bytes));
}

}  // namespace

std::vector<TimedWork> copying_works() {
  return {{"copy_all",
           "a library into an empty one of the other unit, per material and composition", 2.0,
           [](const Workshop& workshop) { return workshop.materials() + workshop.compositions(); },
           copy_all, 2}};
}

bool copy_within_memory(Workshop& workshop) {
  const auto source = open_veldra(workshop.sample_made_elsewhere());
  const auto destination = veldra::Library::create(workshop.fresh("copy.lib").c_str(),
                                                   veldra::Unit::Millimetres, "copy");
  auto mapping = std::make_unique<veldra::IdMapping>(destination.get());

  forget_peak();
  const std::size_t resident_before = resident_bytes();
  const CountedHeap heap;
  destination->copyAll(source, *mapping);
  const double resident_growth =
      static_cast<double>(peak_resident_bytes()) - static_cast<double>(resident_before);
  const std::size_t entries = mapping->size();
  const std::size_t live_before = heap.live();
  mapping.reset();
  const double mapping_bytes = static_cast<double>(live_before - heap.live());

  std::printf("copyAll of %u materials and %u compositions\n", workshop.materials(),
              workshop.compositions());
  print("growth of the process at most", resident_growth);
  print("of it the mapping", mapping_bytes);
  print("of it everything else (target: 64)", resident_growth - mapping_bytes);
  print("objects of C++ at most, the mapping aside",
        static_cast<double>(heap.peak()) - mapping_bytes);
  std::printf("%-52s %8zu\n", "entries of the mapping", entries);
  return mebibytes(resident_growth - mapping_bytes) <= 64;
}

}  // namespace veldra_bench
