// SPDX-License-Identifier: GPL-2.0-or-later
#include "counters.hpp"
#include "work.hpp"

#include <cstdio>

namespace veldra_bench {

namespace {

/// A full library in inches into new ones.
class CopyAll {
 public:
  CopyAll(Workshop& workshop, veldra::Unit unit)
      : workshop_(workshop),
        unit_(unit),
        factor_(unit == veldra::Unit::Inches ? 1 : 25.4),
        veldra_source_(open_veldra(workshop.sample().path())),
        plain_source_(open_plain(workshop.sample().path())) {}

  void prepare() {
    fewest_.reset();
    destinations_.reset();
    destinations_ = new_pair(workshop_, unit_);
    fewest_path_ = workshop_.copy_of(destinations_->plain_path, "fewest.lib");
    fewest_ = open_plain(fewest_path_);
  }

  void veldra(Digest* digest) {
    destinations_->veldra->copyAll(veldra_source_);
    add_objects(digest, destinations_->veldra_path);
  }

  void plain(Digest* digest) {
    plain_copy_all(destinations_->plain.get(), plain_source_.get(), factor_);
    add_objects(digest, destinations_->plain_path);
  }

  void fewest(Digest* digest) {
    plain_copy_all_in_sql(fewest_.get(), workshop_.sample().path().c_str(), factor_);
    add_objects(digest, fewest_path_);
  }

 private:
  static void add_objects(Digest* digest, const std::string& path) {
    if (digest != nullptr) digest->add(digest_of_objects(path));
  }

  Workshop& workshop_;
  veldra::Unit unit_;
  double factor_;
  std::shared_ptr<veldra::Library> veldra_source_;
  PlainLibrary plain_source_;
  std::unique_ptr<Pair> destinations_;
  std::string fewest_path_;
  PlainLibrary fewest_;
};

Work copying(Workshop& workshop, veldra::Unit unit) {
  auto copy = std::make_shared<CopyAll>(workshop, unit);
  Work work{[copy](Digest* digest) { copy->veldra(digest); },
            [copy](Digest* digest) { copy->plain(digest); }, [copy] { copy->prepare(); }};
  work.fewest = [copy](Digest* digest) { copy->fewest(digest); };
  return work;
}

Work copy_all(Workshop& workshop) { return copying(workshop, veldra::Unit::Millimetres); }

Work copy_all_same_unit(Workshop& workshop) { return copying(workshop, veldra::Unit::Inches); }

unsigned copied_objects(const Workshop& workshop) {
  return workshop.materials() + workshop.compositions();
}

/// What the copy may take for each, most of it in the mapping.
const double bytes_an_object = 150;

double mebibytes(double bytes) { return bytes / (1024 * 1024); }

void print(const char* what, double bytes) {
  std::printf("%-54s %8.1f MiB\n", what, mebibytes(bytes));
}

}  // namespace

std::vector<TimedWork> copying_works() {
  return {
      {"copy_all", "a library into an empty one of the other unit, per material and composition",
       1.1, copied_objects, copy_all, 2},
      {"copy_all_same_unit", "the same into one of the same unit", 1.1, copied_objects,
       copy_all_same_unit, 2}};
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

  const unsigned objects = copied_objects(workshop);
  std::printf("copyAll of %u materials and %u compositions\n", workshop.materials(),
              workshop.compositions());
  print("growth of the process at most", resident_growth);
  print("of it the mapping", mapping_bytes);
  const double fixed = resident_growth - bytes_an_object * static_cast<double>(objects);
  print("of it more than 150 bytes for each object (target: 16)", fixed);
  print("objects of C++ at most, the mapping aside",
        static_cast<double>(heap.peak()) - mapping_bytes);
  std::printf("%-54s %8zu\n", "entries of the mapping", entries);
  return mebibytes(fixed) <= 16;
}

}  // namespace veldra_bench
