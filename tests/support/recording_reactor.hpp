// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TESTS_SUPPORT_RECORDING_REACTOR_HPP
#define VELDRA_TESTS_SUPPORT_RECORDING_REACTOR_HPP

#include <veldra/veldra.hpp>

#include <functional>
#include <string>
#include <vector>

namespace veldra_tests {

/// "Tag", "Material", ...; "kind 99" for a number that is no kind.
std::string kind_name(veldra::ObjectType type);

/// A reactor that writes down each call that it gets, in order, and then answers as it is told.
///
/// The texts are "conflict Material 'Oak'", "saved Tag 3", "may remove Layer 2",
/// "removed Layer 2", "type Material", "library" and "reserved".
///
///     RecordingReactor reactor;
///     reactor.decision = veldra::Library::Reactor::UseExisting;
///     library->setReactor(&reactor);
///     library->save(oak);
///     EXPECT_THAT(reactor.calls(), ElementsAre("conflict Material 'Oak'"));
///
/// A hook is called when the call was written down, with the arguments of the call; where there is
/// an answer, the hook gives it in place of the member. A hook may throw.
///
/// Of the first thousand calls only conflicts allocate memory, so that a test in which memory is
/// short learns what it was told.
class RecordingReactor : public veldra::Library::Reactor {
 public:
  RecordingReactor() { calls_.reserve(1000); }

  /// The answer to conflicts; 0 does what a library without a reactor does: it throws. `Rename`
  /// gives the name with " again", or what `rename_with` says, behind it.
  int decision = 0;

  /// The answer to removals: anything but 0 refuses.
  int refusal = 0;

  std::function<int(veldra::Library&, veldra::ObjectType, veldra::String&)> on_conflict;
  std::function<void(veldra::Library&, const veldra::ObjectKey&)> on_saved;
  std::function<int(veldra::Library&, const veldra::ObjectKey&)> on_may_remove;
  std::function<void(veldra::Library&, const veldra::ObjectKey&)> on_removed;
  std::function<void(veldra::Library&)> on_library_changed;
  std::function<void(veldra::Library&, veldra::ObjectType)> on_type_changed;

  /// Answers conflicts with `Rename` and the name with `suffix` behind it.
  void rename_with(const std::string& suffix);

  /// Calls `observer` whenever an object may be removed, and answers as before.
  void watch_removals(const std::function<void()>& observer);

  /// Has each conflict and each saved object count `remaining` down; the one that finds 0 throws
  /// `std::runtime_error`.
  void throw_at_the_end_of(int& remaining) { remaining_ = &remaining; }

  std::vector<std::string> calls() const;

  /// The calls that start with `prefix`, such as "saved".
  std::vector<std::string> calls_starting_with(const std::string& prefix) const;

  /// The numbers of the kinds of `typeChanged`, in order, and 0 for `libraryChanged`.
  std::string changes() const;

  void forget() { calls_.clear(); }

  int resolveNameConflict(veldra::Library& library, veldra::ObjectType type,
                          veldra::String& name) override;
  void objectSaved(veldra::Library& library, const veldra::ObjectKey& key) override;
  int mayRemove(veldra::Library& library, const veldra::ObjectKey& key) override;
  void objectRemoved(veldra::Library& library, const veldra::ObjectKey& key) override;
  void libraryChanged(veldra::Library& library) override;
  void typeChanged(veldra::Library& library, veldra::ObjectType type) override;
  void reserved() override;

 private:
  enum class What { Conflict, Saved, MayRemove, Removed, LibraryChanged, TypeChanged, Reserved };

  struct Call {
    What what;
    veldra::ObjectKey key;  // of a conflict and of a change of a kind only the kind
    veldra::String name;
  };

  static std::string text_of(const Call& call);
  void count_down();

  std::vector<Call> calls_;
  std::string suffix_ = " again";
  int* remaining_ = nullptr;
};

}  // namespace veldra_tests

#endif
