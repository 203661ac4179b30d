// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_STORE_MODEL_WALK_HPP
#define VELDRA_TESTS_STORE_MODEL_WALK_HPP

#include "store/model_drafts.hpp"
#include "support/database.hpp"
#include "support/description.hpp"
#include "support/recording_reactor.hpp"
#include "support/temporary.hpp"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace veldra_tests {

/// What must be so again when a transaction is rolled back.
struct Before {
  struct Watched {
    std::string before;
    std::function<std::string()> state;
  };

  ModelStore model;
  std::string rows;
  std::vector<Watched> objects;
};

/// A transaction that is held over several steps.
struct HeldTransaction {
  HeldTransaction(veldra::Library& library, const ModelStore& model)
      : before{model, dump(library.filename().utf8()), {}}, transaction(library) {}

  Before before;
  std::set<veldra::ObjectType> changed;  ///< the kinds of which the reactor is told at the end
  veldra::Library::Transaction transaction;
};

/// A library, its model, and the reactor that they share.
struct Side {
  Side(const std::string& path_, veldra::Unit unit)
      : path(path_),
        library(veldra::Library::create(path_.c_str(), unit, "")),
        model(new_store(unit)) {
    library->setReactor(&reactor);
  }

  void reopen() {
    library.reset();
    library = veldra::Library::open(path.c_str(), false);
    library->setReactor(&reactor);
  }

  std::string path;
  RecordingReactor reactor;
  std::shared_ptr<veldra::Library> library;
  ModelStore model;
  std::unique_ptr<HeldTransaction> held;
};

/// An object that is to be removed, as both sides know it.
struct Victim {
  veldra::ObjectKey key;
  ModelKey model;
};

using Removed = std::map<veldra::ObjectKey, bool>;

/// Thousands of commits wait for the disk most of the time, and nothing here is about the disk.
void keep_files_in_memory();

/// Does the same at random to two libraries and to their models, and compares.
class RandomWalk {
 public:
  explicit RandomWalk(Random random);

  /// Whether there are bytes left that decide about steps.
  bool has_bytes() const { return random_.has_bytes(); }
  void step();

  /// The libraries hold what their models hold.
  void compare() const;
  void expect_sound_files() const;

  /// What holds for every library, whatever is in it.
  void expect_laws();

 private:
  using Expected = std::function<void(ModelOperation&)>;
  using Call = std::function<void()>;

  void do_one();

  /// Does some steps within one transaction of one side, which is then kept or taken back.
  void do_several();
  void commit(Side& side);
  void roll_back(Side& side);

  /// Remembers the object as it is, to see whether a rollback makes it so again.
  template <class T>
  void watch(const std::shared_ptr<T>& object) {
    if (side_->held)
      side_->held->before.objects.push_back(
          {state_of(object), [object] { return state_of(object); }});
  }

  std::shared_ptr<veldra::Library> new_library();
  void begin(const std::string& what);

  /// Runs a call and what the model makes of it, and compares how they end and what they tell.
  /// Returns whether the call succeeds.
  bool run(const Call& call, const Expected& expected, bool keeps_what_was_done = false);

  /// The reactor is told of these kinds now, or at the end of the transaction that is held.
  void expect_told(const std::set<veldra::ObjectType>& changed);

  /// Draws the answer to all names that are taken from now on.
  void decide();

  std::vector<ModelKey> keys_of_some_kind(const ModelStore& store);
  void reopen();

  // Saving.

  /// A save that fails must leave the object as it was.
  template <class T>
  void save(const std::shared_ptr<T>& object, const Expected& expected);

  ModelKey named_key();
  void save_named();
  template <class T>
  void rename(const ModelKey& key, const std::string& name);
  void rename_named();
  template <class AnyDraft>
  void save_draft(const AnyDraft& draft);
  void save_material();
  void save_composition();
  void save_unchanged();

  /// Saves a changed object whose row somebody else has removed.
  void save_removed();

  // Removing.

  Victim victim_of(const ModelKey& key) const;

  /// Lets the reactor refuse some of the objects.
  std::set<veldra::ObjectKey> refuse_some(const std::vector<Victim>& victims);

  void run_removal(std::vector<Victim> victims, const std::function<void(Removed&)>& call);
  void remove_one();
  void remove_several();
  void purge();

  // Copying.

  /// What is to be copied, in the order in which the source gives it.
  struct Choice {
    std::vector<ModelKey> models;
    std::set<veldra::ObjectKey> keys;
  };

  template <class T>
  void choose(Choice& choice, unsigned percent);
  void call_copy(unsigned form, veldra::ObjectType only, const Choice& choice,
                 veldra::IdMapping& mapping);
  template <class T>
  void compare_names(const veldra::IdMapping& mapping,
                     const std::map<ModelKey, std::string>& copied);
  void compare_mapping(const veldra::IdMapping& mapping,
                       const std::map<ModelKey, std::string>& copied);
  void copy();
  void save_foreign();

  Random random_;
  TemporaryFolder folder_;
  Side sides_[2];
  Side* side_ = &sides_[0];
  Side* other_ = &sides_[1];
  int decision_ = 0;
  int libraries_ = 0;
  std::string what_;
};

}  // namespace veldra_tests

#endif
