// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_PLAN_FILE_HPP
#define VELDRA_KIT_PLAN_FILE_HPP

#include <veldra/kit/exchange.hpp>
#include <veldra/kit/export.hpp>
#include <veldra/kit/plan.hpp>

#include <memory>
#include <string>
#include <vector>

namespace veldra::kit {

/// Writes a plan as JSON that somebody may edit, and that `PlanFile` reads: the objects of its
/// source (`write_json`), and for each material and composition what is to become of it, as "add",
/// "equal", "tag", "keep", "change", "rename" or "undecided".
///
/// - `destination` is the library for which the plan was made, and `path` where it lies.
/// - Hold the `Snapshot` or `Transaction` in which the plan was made.
///
/// Throws:
/// - `PlanError`: the plan was made without fingerprints.
/// - a database error (`Library`), and what `sink` and `progress` throw.
VELDRA_KIT_EXPORT void write_plan(const Plan& plan, const Library& destination,
                                  const std::string& path, const TextSink& sink,
                                  const Progress& progress = {});

/// What a plan file says of one object.
struct PlanFileEntry {
  ObjectKey object;           ///< the object in the source
  std::string name;           ///< its name there
  unsigned line = 0;          ///< where the entry begins in the file
  Decision decision{};        ///< what is to become of it
  std::string new_name;       ///< the name of one that is renamed; empty for any free one
  std::string stored_name;    ///< what the stored one is called, if otherwise
  std::string state_of;       ///< the stored one whose other state it is, by name; empty for none
  std::string fingerprint;    ///< of the stored one as it was; empty where there was none
  bool ignores_case = false;  ///< whether its name does
};

/// A plan that was written, and maybe edited since. Nothing in it is taken on trust: what was
/// decided is planned again in the library, and has to be possible there.
///
///     const veldra::kit::PlanFile file("plan.json", content);
///     file.apply(*veldra::Library::openExisting(file.path()));
///
/// Thread rule: one thread at a time uses an object.
class VELDRA_KIT_EXPORT PlanFile {
 public:
  /// Reads the content of a file; `file` is for messages.
  ///
  /// Throws:
  /// - `SourceError`: this is no plan, or something in it is missing, not known, there twice, of
  ///   another kind than it must be, or makes no sense.
  /// - `std::bad_alloc`.
  PlanFile(std::string file, std::string content);

  /// Where the library of the plan was when that was written, in UTF-8.
  const std::string& path() const noexcept { return path_; }

  /// Which library it is.
  const String& guid() const noexcept { return guid_; }

  /// The objects of the plan, in a library in memory.
  const std::shared_ptr<const Library>& source() const noexcept { return source_; }

  /// What the file says of each material and composition of `source`, in the order of their ids,
  /// materials first.
  const std::vector<PlanFileEntry>& entries() const noexcept { return entries_; }

  /// What is to become of the objects by the decisions of the file. What nobody has decided is
  /// undecided in the plan, and so is what cannot come in because of a code. Reads both libraries;
  /// hold a `Snapshot` or a `Transaction` of the destination.
  ///
  /// Throws:
  /// - `PlanError`: the library is another one, or an object that the plan is about is not as it
  ///   was; also one that was not there. Other changes do not matter.
  /// - `SourceError`: a decision makes no sense for its object.
  /// - a database error (`Library`), and what `progress` throws.
  Plan plan(const Library& destination, const Progress& progress = {}) const;

  /// Does what the file says, in a transaction of its own: all of it, or nothing. Takes the reactor
  /// of the destination off. Returns which stored object stands for each of `source`.
  ///
  /// Throws: as `plan` and `Plan::apply`.
  IdMapping apply(Library& destination, const Progress& progress = {}) const;

 private:
  PlanRules rules(const Library& destination) const;
  void require_same_state(const Plan& plan) const;
  void require_decisions(const Plan& plan) const;

  std::string file_;
  std::string path_;
  String guid_;
  std::shared_ptr<const Library> source_;
  std::vector<PlanFileEntry> entries_;
};

}  // namespace veldra::kit

#endif
