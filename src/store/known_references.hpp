// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_STORE_KNOWN_REFERENCES_HPP
#define VELDRA_STORE_KNOWN_REFERENCES_HPP

#include "store/database.hpp"

#include <veldra/values.hpp>

#include <cstddef>
#include <memory>
#include <vector>

namespace veldra {

/// Which objects of a kind are referred to, found out once for the removal of many of them within
/// the transaction that the host holds: that has the lock for writing, so nobody else can refer to
/// one meanwhile. While it lives, the database does not look itself for what refers to a row that
/// is deleted. That would search whole tables, for each row.
///
/// All that is removed is a part of it. When it is ended, it looks whether nothing refers to what
/// is gone.
class KnownReferences {
 public:
  /// Null where the database has to look itself: for a few objects that is faster, outside of a
  /// transaction of the host others may write in between, and a file may have foreign keys or
  /// triggers of other programs.
  template <class T>
  static std::unique_ptr<KnownReferences> of(Database& database, std::size_t objects);

  KnownReferences(const KnownReferences&) = delete;
  KnownReferences& operator=(const KnownReferences&) = delete;

  /// What was removed stays also when something else has ended the operation.
  ~KnownReferences();

  bool is_referred_to(unsigned id) const;

  void removed(unsigned id) { removed_.push_back(id); }

  /// Takes all back and throws if something refers to what was removed, or that cannot be found
  /// out.
  void end();

 private:
  using Ids = std::vector<unsigned>;  // in ascending order
  using FindIds = Ids (*)(Database& database);

  KnownReferences(Database& database, Ids referred, FindIds find_referred);

  void require_consistent() const;
  void stop_looking(const char* statements) noexcept;

  Database& database_;
  Ids referred_;  // of those that are there
  FindIds find_referred_;
  std::vector<unsigned> removed_;
  bool ended_ = false;
};

}  // namespace veldra

#endif
