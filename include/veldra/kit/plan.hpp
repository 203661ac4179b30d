// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_HPP
#define VELDRA_KIT_PLAN_HPP

#include <veldra/id_mapping.hpp>
#include <veldra/kit/clash.hpp>
#include <veldra/kit/compare.hpp>
#include <veldra/kit/error.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/progress.hpp>
#include <veldra/library.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace veldra::kit {

/// What is to become of an object of the source.
enum class Decision : int {
  Add = 0,       ///< it comes in
  Equal = 1,     ///< the destination has the same already
  Tag = 2,       ///< the same, and the stored one gets tags that it lacks
  Keep = 3,      ///< the stored one differs, and is taken as it is
  Change = 4,    ///< the stored one differs, and gets these values
  Rename = 5,    ///< it comes in under another name
  Undecided = 6  ///< it clashes with a stored one, and nobody has decided
};

/// A decision for people: "added", "equal", "tagged", "kept", "changed", "renamed", "undecided".
VELDRA_KIT_EXPORT const char* name_of(Decision decision);

/// Why an object cannot simply come in.
struct Clash {
  /// What both have.
  enum class With : int {
    Name = 0,       ///< the same name
    OtherCase = 1,  ///< names that are the same but for the case, which the source ignores
    Code = 2        ///< the same code
  };

  With with;         ///< what both have
  unsigned id;       ///< the stored object
  std::string name;  ///< its name
  std::string code;  ///< the code that both have; else empty
};

/// What both have, for people: "name", "name in another case", "code".
VELDRA_KIT_EXPORT const char* name_of(Clash::With with);

/// What is to become of one object.
struct PlanEntry {
  ObjectKey source;    ///< the object in the source
  std::string name;    ///< its name there
  Decision decision;   ///< what is to become of it
  unsigned stored;     ///< the stored object concerned, by its id; 0 for none
  std::string result;  ///< the name under which the destination has it then

  /// What changes, from the stored value to that of the source, with lengths and names as in the
  /// destination; of an object that is kept or undecided, how the two differ. Tags are among them
  /// only in an object that changes.
  std::vector<FieldChange> changes;

  std::vector<Clash> clashes;     ///< with what it clashes
  std::vector<std::string> tags;  ///< those that an equal object is to get
  std::string fingerprint;        ///< of the stored object (`fingerprint_of`); empty for none
};

/// By which rules a plan is made.
struct PlanRules {
  OnClash on_clash = OnClash::Fail;         ///< what becomes of clashes of names
  std::map<ObjectType, OnClash> for_kind;   ///< the same for one kind
  std::map<ObjectKey, OnClash> for_object;  ///< the same for one object of the source

  /// Under which name an object of the source comes in that is renamed. By the rule
  /// `OnClash::Rename` it gets the name also where its own is free.
  std::map<ObjectKey, std::string> new_names;

  /// Objects of the source whose tags the stored one does not get that is equal.
  std::set<ObjectKey> untagged;

  /// Whether the name of an object of the source ignores case; not set for none.
  std::function<bool(const ObjectKey&)> ignores_case;

  /// Which stored object one of the source is another state of, whatever its name. It gets all its
  /// values, tags and name among them, unless a rule of its own in `for_object` is `OnClash::Use`.
  std::map<ObjectKey, unsigned> states_of;

  /// Whether entries get fingerprints, which takes time.
  bool fingerprints = false;
};

/// A plan that cannot be applied: somebody has to decide first, or something has changed since.
/// `what()` names the objects.
class VELDRA_KIT_EXPORT PlanError : public Error {
 public:
  using Error::Error;

  /// Copies the error.
  PlanError(const PlanError& other) = default;

  /// Destroys the error.
  ~PlanError() override;
};

/// What is to become of each object of a source in a destination, found out and not yet done.
///
///     veldra::Library::Transaction transaction(*office);
///     const veldra::kit::Plan plan(supplier, *office, rules);
///     for (const auto& entry : plan.entries()) tell(entry);
///     plan.apply(*office);
///     transaction.commit();
///
/// - An object is the same as the stored one of its name by the rules of `differences`. Lengths are
///   compared in the unit of the destination.
/// - Tags, drawing layers, types and custom properties of the same name are one and the same.
/// - Each object of the source has an entry, kind by kind, in the order of its ids: a source that
///   is part of a larger one is put into a library in memory first (`Library::copy`).
///
/// Thread rule: that of the libraries.
class VELDRA_KIT_EXPORT Plan {
 public:
  /// Finds out what is to become of the objects of `source`. Reads both libraries, a part at a
  /// time; hold a `Snapshot` or a `Transaction` of each that others may change meanwhile.
  ///
  /// Throws:
  /// - `Error`: an entry of `rules` names no object, or a new name that cannot be had.
  /// - a database error (`Library`), and what `progress` throws.
  Plan(std::shared_ptr<const Library> source, const Library& destination, PlanRules rules,
       const Progress& progress = {});

  /// What is to become of each object.
  const std::vector<PlanEntry>& entries() const& noexcept { return entries_; }

  /// Not of a plan that goes at once.
  const std::vector<PlanEntry>& entries() && = delete;

  /// The rules by which it was made.
  const PlanRules& rules() const noexcept { return rules_; }

  /// The library that the objects are taken from.
  const std::shared_ptr<const Library>& source() const noexcept { return source_; }

  /// Whether nothing is undecided.
  bool is_decided() const noexcept;

  /// Whether applying it would write anything.
  bool changes_anything() const noexcept;

  /// Does what was planned. The caller holds the transaction of the destination within which the
  /// plan was made, and rolls it back when this throws. Takes the reactor of the destination off.
  ///
  /// Returns which stored object stands for each of the source.
  ///
  /// Throws:
  /// - `PlanError`: something is undecided; nothing is done then.
  /// - a database error (`Library`), and what `progress` throws.
  IdMapping apply(Library& destination, const Progress& progress = {}) const;

  /// Does what was planned some time ago, in a transaction of its own: all of it, or nothing. The
  /// source must be as it was. Takes the reactor of the destination off. Returns what `apply` does.
  ///
  /// Throws:
  /// - `PlanError`: something is undecided, or an object that the plan is about is not as it was;
  ///   this is found out by the fingerprints, with which the plan must have been made.
  /// - a database error (`Library`), and what `progress` throws.
  IdMapping apply_later(Library& destination, const Progress& progress = {}) const;

 private:
  std::shared_ptr<const Library> source_;
  PlanRules rules_;
  std::vector<PlanEntry> entries_;
};

/// Throws `PlanError`, and names them: if objects concerned by `plan` are not, in `now`, which was
/// made of the same source, as they were.
VELDRA_KIT_EXPORT void require_same_state(const Plan& plan, const Plan& now);

/// A SHA-256 over the fields of a stored object, in hexadecimal digits: the same for the same
/// values, also where the library got more custom properties meanwhile.
///
/// `T` is one of the six classes of objects.
///
/// Throws: as `Field::get`.
template <class T>
VELDRA_KIT_EXPORT std::string fingerprint_of(const T& object);

}  // namespace veldra::kit

#endif
