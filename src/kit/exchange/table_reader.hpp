// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_TABLE_READER_HPP
#define VELDRA_KIT_EXCHANGE_TABLE_READER_HPP

#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/table_rows.hpp"
#include "kit/exchange/table_text.hpp"

#include <veldra/kit/exchange.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veldra::kit {

/// Which table a file holds.
enum class TableKind { Materials, Compositions, Layers };

/// A table as it was read.
struct TableSource {
  std::size_t index;  ///< of the source that it is of
  std::shared_ptr<const TableSheet> sheet;
  TableStyle style;
  SourceReport* report;
  TableKind kind = TableKind::Materials;
  unsigned heading_line = 1;
  Cells headings;
};

/// A content that is one table or several.
class TableContent : public SourceContent {
 public:
  bool is_table() const override { return true; }
  void add_to(SourceSet& set, SourceReport& report) const override;

  /// Adds the tables of the source of an index, with their headings read.
  virtual void add_tables(std::size_t index, const TableRules& rules, SourceReport& report,
                          std::vector<TableSource>& tables) const = 0;
};

/// Reads the headings of a table, and finds out what its rows are about. Throws `SourceError`.
void read_head(TableSource& table);

/// The kind of a table that its headings tell; nothing where they tell none.
std::optional<TableKind> kind_by_headings(const Cells& headings);

/// What tables say of the objects of a library.
Sources read_tables(std::vector<TableSource>& tables, const std::shared_ptr<const Library>& library,
                    const Progress& progress);

}  // namespace veldra::kit

#endif
