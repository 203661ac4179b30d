// SPDX-License-Identifier: GPL-2.0-or-later
#include "work.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace veldra_bench {

namespace {

Shape shape_of(unsigned materials) {
  Shape shape;
  shape.materials = materials;
  shape.compositions = materials / 5;
  return shape;
}

std::unique_ptr<Sample> made(const std::string& path, const Shape& shape) {
  return std::make_unique<Sample>(path, shape);
}

}  // namespace

Workshop::Workshop(const std::string& folder, unsigned materials)
    : folder_(folder), materials_(materials) {}

unsigned Workshop::small_materials() const { return std::max(materials_ / 10, 50u); }

const Sample& Workshop::sample() {
  if (sample_ == nullptr) sample_ = made(fresh("sample.lib"), shape_of(materials_));
  return *sample_;
}

const Sample& Workshop::small_sample() {
  if (small_sample_ == nullptr) {
    small_sample_ = made(fresh("small.lib"), shape_of(small_materials()));
  }
  return *small_sample_;
}

const Sample& Workshop::sample_with_assets() {
  if (sample_with_assets_ == nullptr) {
    Shape shape = shape_of(materials_);
    shape.assets = true;
    sample_with_assets_ = made(fresh("assets.lib"), shape);
  }
  return *sample_with_assets_;
}

const Sample& Workshop::partly_used_sample(unsigned materials) {
  if (partly_used_sample_ == nullptr || partly_used_sample_->materials() != materials) {
    Shape shape;
    shape.materials = materials;
    shape.compositions = materials / 4;
    shape.a_third_unused = true;
    partly_used_sample_ = made(fresh("partly_used.lib"), shape);
  }
  return *partly_used_sample_;
}

std::string Workshop::sample_made_elsewhere() const {
  const std::string path = fresh("elsewhere.lib");
  const pid_t child = ::fork();
  if (child == 0) {
    made(path, shape_of(materials_));
    ::_exit(0);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  if (status != 0) throw std::runtime_error("no sample " + path);
  return path;
}

std::string Workshop::fresh(const std::string& name) const {
  const std::string path = folder_ + "/" + name;
  std::filesystem::remove(path);
  std::filesystem::remove(path + "-journal");
  return path;
}

std::string Workshop::copy_of(const std::string& path, const std::string& name) const {
  const std::string copy = fresh(name);
  std::filesystem::copy_file(path, copy);
  return copy;
}

std::unique_ptr<Pair> new_pair(Workshop& workshop, veldra::Unit unit) {
  const std::string path = workshop.fresh("new.lib");
  veldra::Library::create(path.c_str(), unit, "new");
  return std::make_unique<Pair>(workshop.copy_of(path, "new-veldra.lib"),
                                workshop.copy_of(path, "new-plain.lib"));
}

}  // namespace veldra_bench
