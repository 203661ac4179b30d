// SPDX-License-Identifier: GPL-2.0-or-later
#include "store/known_references.hpp"

#include "store/file_schema.hpp"
#include "store/kinds.hpp"
#include "store/queries.hpp"
#include "store/statement.hpp"
#include "store/transactions.hpp"

#include <veldra/exceptions.hpp>

#include <sqlite3.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <utility>

namespace veldra {

namespace {

/// From when on finding out everything once is faster than searching for each object.
constexpr std::size_t worth_it = 4;

/// In SQL, all that decides which rows may be deleted, one text a part: the foreign keys, and the
/// triggers.
const char* const rules_of_deletion = R"sql(
    SELECT lower(m.name) || '.' || lower(f."from") || '>' || lower(f."table") || '.'
           || ifnull(lower(f."to"), '') || ' ' || f.on_delete || ' ' || f.on_update
      FROM sqlite_master AS m JOIN pragma_foreign_key_list(m.name) AS f
     WHERE m.type = 'table'
    UNION ALL SELECT name FROM sqlite_master WHERE type = 'trigger'
    UNION ALL SELECT name FROM sqlite_temp_master WHERE type = 'trigger')sql";

using Rules = std::multiset<std::string>;

Rules rules_in(odb::sqlite::connection& connection) {
  Rules rules;
  Statement row(connection, rules_of_deletion);
  while (row.next()) rules.insert(row.text(0));
  return rules;
}

const Rules& expected_rules() {
  static const Rules rules = [] {
    Rules found;
    in_expected_schema([&found](auto& connection) { found = rules_in(connection); });
    return found;
  }();
  return rules;
}

/// Works within a transaction, where the pragma does nothing.
void enforce_foreign_keys(const Database& database, bool enforced) noexcept {
  sqlite3_db_config(database.handle(), SQLITE_DBCONFIG_ENABLE_FKEY, enforced ? 1 : 0, nullptr);
}

using Ids = std::vector<unsigned>;

Ids in_both(const Ids& left, const Ids& right) {
  Ids both;
  std::set_intersection(left.begin(), left.end(), right.begin(), right.end(),
                        std::back_inserter(both));
  return both;
}

Ids sorted(Ids ids) {
  std::sort(ids.begin(), ids.end());
  return ids;
}

}  // namespace

template <class T>
std::unique_ptr<KnownReferences> KnownReferences::of(Database& database, std::size_t objects) {
  if (objects < worth_it || database.transactions().held() == nullptr) return nullptr;
  if (database.transactions().is_writing()) return nullptr;
  // What is left of violated keys would be forgotten while nobody looks.
  if (has_violated_keys(database)) return nullptr;
  const ReadTransaction transaction(database);
  if (rules_in(database.only_connection()) != expected_rules()) return nullptr;
  auto referred = in_both(referred_ids<T>(database), sorted(all_ids<T>(database)));
  return std::unique_ptr<KnownReferences>(
      new KnownReferences(database, std::move(referred), referred_ids<T>));
}

KnownReferences::KnownReferences(Database& database, Ids referred, FindIds find_referred)
    : database_(database), referred_(std::move(referred)), find_referred_(find_referred) {
  database.only_connection().execute("SAVEPOINT removal");
  enforce_foreign_keys(database, false);
}

KnownReferences::~KnownReferences() {
  if (!ended_) stop_looking("RELEASE removal");
}

bool KnownReferences::is_referred_to(unsigned id) const {
  return std::binary_search(referred_.begin(), referred_.end(), id);
}

void KnownReferences::stop_looking(const char* statements) noexcept {
  ended_ = true;
  sqlite3_exec(database_.handle(), statements, nullptr, nullptr, nullptr);
  enforce_foreign_keys(database_, true);
}

void KnownReferences::require_consistent() const {
  if (removed_.empty()) return;
  const ReadTransaction transaction(database_);
  if (in_both(find_referred_(database_), sorted(removed_)).empty()) return;
  throw DatabaseError(SQLITE_CONSTRAINT);
}

void KnownReferences::end() {
  try {
    require_consistent();
  } catch (...) {
    stop_looking("ROLLBACK TO removal; RELEASE removal");
    throw;
  }
  stop_looking("RELEASE removal");
}

#define VELDRA_INSTANTIATE(T) \
  template std::unique_ptr<KnownReferences> KnownReferences::of<T>(Database&, std::size_t);

VELDRA_FOR_EACH_KIND(VELDRA_INSTANTIATE)

}  // namespace veldra
