// SPDX-License-Identifier: GPL-2.0-or-later
#include "work.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace veldra_bench {

namespace {

std::unique_ptr<Sample> made(const std::string& path, unsigned materials) {
  return std::make_unique<Sample>(path, materials);
}

}  // namespace

Workshop::Workshop(const std::string& folder, unsigned materials)
    : folder_(folder), materials_(materials) {}

unsigned Workshop::small_materials() const { return std::max(materials_ / 10, 50u); }

const Sample& Workshop::sample() {
  if (sample_ == nullptr) sample_ = made(fresh("sample.lib"), materials_);
  return *sample_;
}

const Sample& Workshop::small_sample() {
  if (small_sample_ == nullptr) small_sample_ = made(fresh("small.lib"), small_materials());
  return *small_sample_;
}

std::string Workshop::sample_made_elsewhere() const {
  const std::string path = fresh("elsewhere.lib");
  const pid_t child = ::fork();
  if (child == 0) {
    made(path, materials_);
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

std::unique_ptr<Pair> new_pair(Workshop& workshop) {
  const std::string path = workshop.fresh("new.lib");
  veldra::Library::create(path.c_str(), veldra::Unit::Millimetres, "new");
  return copies_of(workshop, path);
}

}  // namespace veldra_bench
