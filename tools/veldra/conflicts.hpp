// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_TOOL_CONFLICTS_HPP
#define VELDRA_TOOL_CONFLICTS_HPP

#include "kit.hpp"

#include <veldra/veldra.hpp>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace veldra_tool {

/// What to do about a name that is taken by an object that differs.
using OnConflict = kit::OnClash;

/// What became of an object that was copied.
enum class Outcome { Added, Equal, Kept, Changed, Renamed };

/// Decides about taken names while all objects of `source`, a staging library in the unit of the
/// destination, are copied with `mapping`. An object that equals the stored one is no conflict: the
/// stored one stands for it. Assets do not count, because they are never copied.
class ConflictReactor : public veldra::Library::Reactor {
 public:
  ConflictReactor(OnConflict policy, const veldra::Library& source, veldra::IdMapping& mapping);

  /// Decides about codes before anything is copied: a code that is taken is no question but an
  /// error of the copy. A material that is to be overwritten gives its code up, so that a failure
  /// afterwards must take that back; one that is taken as it is stands for the incoming one.
  /// Throws `LibraryFailure` when a code stays taken.
  void settle_codes(const veldra::Library& library);

  /// The tags of this object say where it came from and not what it is; they do not count when it
  /// is compared.
  void ignore_tags(veldra::ObjectType type, const veldra::String& name);

  /// Is called for each object that was written.
  void on_saved(std::function<void()> listener);

  int resolveNameConflict(veldra::Library& library, veldra::ObjectType type,
                          veldra::String& name) override;
  void objectSaved(veldra::Library& library, const veldra::ObjectKey& key) override;

  /// What became of a material or composition of the source, by its name there and by what the
  /// mapping says.
  Outcome outcome(veldra::ObjectType type, const veldra::String& name,
                  veldra::IdMapping::Status status) const;

 private:
  using Name = std::pair<veldra::ObjectType, veldra::String>;

  bool same(const veldra::Library& library, const Name& original,
            const veldra::String& stored_name) const;
  bool same_material(const veldra::Library& library, const veldra::String& original,
                     const veldra::String& stored_name) const;
  bool same_composition(const veldra::Library& library, const veldra::String& original,
                        const veldra::String& stored_name) const;
  bool same_layer_materials(const veldra::Composition& incoming,
                            const veldra::Composition& stored) const;
  template <class T>
  void drop_ignored_tags(T& object, const Name& original) const;

  void settle_code(const veldra::Material& incoming, veldra::Material& stored);
  void use_stored(const veldra::Material& incoming, const veldra::Material& stored);
  bool settled(const veldra::Material& incoming) const;

  [[noreturn]] static void fail(const Name& original);
  int rename(const veldra::Library& library, const Name& original, veldra::String& name);

  OnConflict policy_;
  const veldra::Library& source_;
  veldra::IdMapping& mapping_;
  std::set<Name> without_tags_;
  std::function<void()> listener_;
  std::map<Name, veldra::String> originals_;  ///< of the new names
  std::set<Name> equal_;
  std::set<Name> renamed_;
};

}  // namespace veldra_tool

#endif
