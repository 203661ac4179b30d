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
  /// All materials, each with two of a few assets.
  const Sample& sample_with_assets();
  /// That many materials of which a third is not used by the compositions, a quarter as many.
  const Sample& partly_used_sample(unsigned materials);

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
  std::unique_ptr<Sample> sample_with_assets_;
  std::unique_ptr<Sample> partly_used_sample_;
};

/// A way to do a work. A digest, when there is one, is to get all that was read, or the state of
/// the file that was written.
using Side = std::function<void(Digest*)>;

/// What a program would use instead of the library, or another work to compare with.
struct Otherwise {
  const char* name = "";
  Side side;
  bool does_the_same = true;
};

/// A work done by the library, and in the other ways that there are.
struct Work {
  Side veldra;
  Side plain;                             ///< the plain program, statement by statement
  std::function<void()> prepare = [] {};  ///< before each round; takes no time
  Side fewest = nullptr;                  ///< with the fewest statements, and own copies
  Side shared = nullptr;                  ///< the same with what several objects refer to shared
  Otherwise otherwise = {};
};

enum class Against { Statements, Fewest, Otherwise };

/// The most that the library may take for the 1 of another side; 0: none.
struct Target {
  Target(double limit, Against against = Against::Statements) : limit(limit), against(against) {}

  double limit;
  Against against;
};

struct TimedWork {
  const char* name;
  const char* measures;
  Target target;
  std::function<unsigned(const Workshop&)> items;
  std::function<Work(Workshop&)> make;
  int rounds_divisor = 1;  ///< for what takes long
  bool large = false;      ///< only where it is asked for
};

/// Bytes or blocks of memory, and what they are compared with.
struct Memory {
  double amount;
  double reference;
};

struct MemoryWork {
  const char* name;
  const char* measures;
  Target target;
  std::function<Memory(Workshop&)> measure;
  const char* unit = "bytes";
};

std::vector<TimedWork> reading_works();
std::vector<TimedWork> list_works();
std::vector<TimedWork> saving_works();
std::vector<TimedWork> file_works();
std::vector<TimedWork> removing_works();
std::vector<TimedWork> copying_works();
std::vector<TimedWork> document_works();
std::vector<MemoryWork> memory_works();

/// Copies a library of that many materials and prints by how much the memory of the process grew.
/// Returns whether it stayed within 16 MiB, 150 bytes for each object aside.
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
std::unique_ptr<Pair> new_pair(Workshop& workshop, veldra::Unit unit = veldra::Unit::Millimetres);

inline void add_rows(Digest* digest, const std::string& path) {
  if (digest != nullptr) digest->add(digest_of_rows(path));
}

}  // namespace veldra_bench

#endif
