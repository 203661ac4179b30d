// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_RELIABILITY_SWEEP_HPP
#define VELDRA_TESTS_RELIABILITY_SWEEP_HPP

#include "reliability/scene.hpp"
#include "support/thrown.hpp"

#include <string>
#include <vector>

namespace veldra_tests {

/// Something that can fail while an operation runs, at points that are counted.
class Faults {
 public:
  virtual ~Faults() = default;

  virtual void arm(unsigned point) = 0;
  virtual void disarm() = 0;
  virtual bool fired() const = 0;

  /// How many points were passed since `arm`.
  virtual unsigned points() const = 0;

  /// What is put before the paths of files.
  virtual std::string vfs() const = 0;

  /// Whether `std::bad_alloc` is an answer.
  virtual bool of_memory() const = 0;

  /// Whether files cannot be deleted either, so that one that was not finished stays.
  virtual bool keep_files() const { return false; }

  /// A number that is the same whenever the same memory is taken; 0 if nobody counts.
  virtual long long memory_taken() const { return 0; }
};

/// Lets faults happen for as long as it lives; no longer than an exception needs to leave.
class Armed {
 public:
  Armed(Faults& faults, unsigned point) : faults_(faults) { faults_.arm(point); }
  Armed(const Armed&) = delete;
  Armed& operator=(const Armed&) = delete;
  ~Armed() { faults_.disarm(); }

 private:
  Faults& faults_;
};

/// What an operation does when nothing fails.
struct Reference {
  explicit Reference(const Operation& operation);

  std::vector<std::string>
      states;              ///< of the file: the old one, those between objects, the new one
  std::string found;       ///< what was read
  std::string identities;  ///< of the objects in memory

  const std::string& before() const { return states.front(); }
  const std::string& after() const { return states.back(); }
};

/// Whether the operation opens the library itself.
bool opens(const Operation& operation);

/// What an error of the file may arrive as out of operations of this kind.
std::vector<std::string> documented_exceptions(Operation::Kind kind);

/// Brings a scene to where its operation begins.
void set_up(Scene& scene, const Operation& operation);

/// Expects that nobody holds a lock on either file.
void expect_unlocked(const Scene& scene);

/// Expects that SQLite finds nothing wrong with the file, and that it is a library or empty.
void expect_sane(const Scene& scene, Start start);

/// One operation with one kind of faults.
class Sweep {
 public:
  Sweep(const Operation& operation, Faults& faults);

  /// Runs the operation with a fault at about `sample` points, or at every point in a long run,
  /// until none fires any more or an expectation fails, and returns how many fired. After each:
  ///
  ///  - what was thrown is documented, and nothing takes longer than 10 seconds;
  ///  - the file passes SQLite's checks, and holds the new state if the call returned and the old
  ///    one if it threw, or one between two objects when several are removed;
  ///  - what was said of each removed object is true;
  ///  - the objects in memory and the lists of what was read are as they were if it threw, and as
  ///    without a fault if it returned;
  ///  - nobody holds a lock;
  ///  - the same handle does the same operation, and others, with success;
  ///  - the kinds that changed were told once, in ascending order;
  ///  - no file is left open, no journal is left over, and no memory.
  unsigned run(unsigned sample);

  /// The same with a fault at each of the last points.
  unsigned run_last(unsigned number);

 private:
  bool run_at(unsigned point);
  bool fail_at(unsigned point);
  void expect_documented(const Thrown& thrown) const;
  void expect_old_state(const Scene& scene) const;
  void expect_new_state(const Scene& scene) const;
  void expect_true_results(const Scene& scene) const;
  void expect_told_in_order(const Scene& scene) const;
  void repeat(Scene& scene) const;

  const Operation& operation_;
  Faults& faults_;
  Reference reference_;
};

/// Sweeps over the operations and reports the figures as those of `what`.
void sweep(const std::vector<Operation>& operations, Faults& faults, unsigned sample,
           const std::string& what);

/// Ends the process, as a failure, unless it is destroyed within 10 seconds of computing, or two
/// minutes of anything.
class Deadline {
 public:
  Deadline();
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;
  ~Deadline();
};

/// Expects that a handle works: it reads, writes in a transaction, and knows who refers to whom.
void expect_usable(veldra::Library& library);

/// Expects that nobody holds the file, and closes the scene: nothing but the libraries is left.
void expect_clean_end(Scene& scene);

}  // namespace veldra_tests

#endif
