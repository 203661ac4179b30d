// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_BENCH_WORK_HPP
#define VELDRA_BENCH_WORK_HPP

#include "digest.hpp"
#include "sample.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace veldra_bench {

/// Where the files lie, and the samples that works share.
class Workshop {
 public:
  Workshop(const std::string& folder, unsigned materials);

  /// The sample with all materials, and the one for works that would take too long on it.
  const Sample& sample();
  const Sample& small_sample();

  /// The path of a full sample that another process has made, so that this one has not used the
  /// memory for it.
  std::string sample_made_elsewhere() const;

  unsigned materials() const { return materials_; }
  unsigned compositions() const { return materials_ / 5; }
  unsigned small_materials() const;

  /// A path in the folder; what is there is removed.
  std::string fresh(const std::string& name) const;
  /// A copy of a file in the folder.
  std::string copy_of(const std::string& path, const std::string& name) const;

 private:
  std::string folder_;
  unsigned materials_;
  std::unique_ptr<Sample> sample_;
  std::unique_ptr<Sample> small_sample_;
};

/// The same work done by the library and by the plain program. A digest, when there is one, is to
/// get all that was read, or the state of the file that was written.
struct Work {
  using Side = std::function<void(Digest*)>;

  Side veldra;
  Side plain;
  std::function<void()> prepare = [] {};  ///< before each round; takes no time
};

struct TimedWork {
  const char* name;
  const char* measures;
  double target;  ///< the library's time for the plain program's 1; 0: none
  std::function<unsigned(const Workshop&)> items;
  std::function<Work(Workshop&)> make;
  int rounds_divisor = 1;  ///< for what takes long
};

/// Bytes of memory that are compared with other bytes.
struct Bytes {
  double bytes;
  double reference;
};

struct MemoryWork {
  const char* name;
  const char* measures;
  double target;
  std::function<Bytes(Workshop&)> measure;
};

std::vector<TimedWork> reading_works();
std::vector<TimedWork> saving_works();
std::vector<TimedWork> file_works();
std::vector<TimedWork> removing_works();
std::vector<TimedWork> copying_works();
std::vector<MemoryWork> memory_works();

/// Copies a library of that many materials and prints by how much the memory of the process grew.
/// Returns whether it stayed within 64 MiB, the mapping aside.
bool copy_within_memory(Workshop& workshop);

/// Numbers in no order, always the same.
class Lottery {
 public:
  unsigned draw(unsigned from, unsigned to) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return from + static_cast<unsigned>((state_ >> 33) % (to - from + 1));
  }

 private:
  unsigned long long state_ = 42;
};

struct ClosePlain {
  void operator()(plain_library* library) const { plain_close(library); }
};
using PlainLibrary = std::unique_ptr<plain_library, ClosePlain>;

inline PlainLibrary open_plain(const std::string& path) {
  return PlainLibrary(plain_open(path.c_str()));
}

inline std::shared_ptr<veldra::Library> open_veldra(const std::string& path) {
  return veldra::Library::open(path.c_str(), false);
}

/// One library file for each side, open.
struct Pair {
  Pair(const std::string& veldra_path, const std::string& plain_path)
      : veldra_path(veldra_path),
        plain_path(plain_path),
        veldra(open_veldra(veldra_path)),
        plain(open_plain(plain_path)) {}

  std::string veldra_path;
  std::string plain_path;
  std::shared_ptr<veldra::Library> veldra;
  PlainLibrary plain;
};

/// Two copies of a library file.
inline std::unique_ptr<Pair> copies_of(Workshop& workshop, const std::string& path) {
  return std::make_unique<Pair>(workshop.copy_of(path, "veldra.lib"),
                                workshop.copy_of(path, "plain.lib"));
}

/// Two copies of a new library.
std::unique_ptr<Pair> new_pair(Workshop& workshop);

inline void add_rows(Digest* digest, const std::string& path) {
  if (digest != nullptr) digest->add(digest_of_rows(path));
}

}  // namespace veldra_bench

#endif
