// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_TABLE_READER_HPP
#define VELDRA_KIT_EXCHANGE_TABLE_READER_HPP

#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/table_text.hpp"

#include <veldra/kit/exchange.hpp>

#include <memory>
#include <string>

namespace veldra::kit {

/// Which table a file holds.
enum class TableKind { Materials, Compositions, Layers };

/// A table as it was read.
struct TableSource {
  std::size_t index;        ///< among the sources
  const std::string* file;  ///< for messages
  const std::string* text;  ///< of the whole table
  TableStyle style;
  TableKind kind = TableKind::Materials;
  Cells headings;
  SourceReport* report;
};

/// The text of a table that was recognised.
class TableContent : public SourceContent {
 public:
  explicit TableContent(FileContent content) : content_(std::move(content)) {}

  bool has_objects() const override;
  bool is_table() const override { return true; }
  void add_to(SourceSet& set, SourceReport& report) const override;

  const std::string& text() const noexcept { return content_.text; }

 private:
  FileContent content_;
};

/// Reads the headings of a table, and finds out what it is and how it is written, as far as that is
/// not given. Throws `SourceError`.
void read_head(TableSource& table, const TableRules& rules);

/// What tables say of the objects of a library.
Sources read_tables(std::vector<TableSource>& tables, const std::shared_ptr<const Library>& library,
                    const Progress& progress);

}  // namespace veldra::kit

#endif
