// SPDX-License-Identifier: GPL-2.0-or-later
#ifndef VELDRA_KIT_EXCHANGE_WORKBOOK_FILE_HPP
#define VELDRA_KIT_EXCHANGE_WORKBOOK_FILE_HPP

#include <veldra/kit/exchange.hpp>

#include <xlsxwriter.h>

#include <cstddef>
#include <string>
#include <vector>

namespace veldra::kit {

/// A workbook that is being written. Rows of a sheet are written from the first to the last; only
/// one is in memory.
class WorkbookFile {
 public:
  /// Throws `Error`: the system has no room for it.
  WorkbookFile();
  WorkbookFile(const WorkbookFile&) = delete;
  WorkbookFile& operator=(const WorkbookFile&) = delete;
  ~WorkbookFile();

  /// Throws `Error`: a sheet cannot have the name.
  lxw_worksheet* add_sheet(const std::string& name);

  lxw_format* heading_format() const { return heading_; }
  lxw_format* text_format() const { return text_; }

  /// Counts a row of a sheet that has cells.
  void count_row(const lxw_worksheet& sheet) { ++rows_.at(sheet.index); }

  /// Gives all bytes to a sink; nothing can be added then. Throws `Error`, and what the sink
  /// throws.
  void finish(const TextSink& sink);

 private:
  int descriptor_;
  lxw_workbook* workbook_ = nullptr;
  lxw_format* heading_ = nullptr;
  lxw_format* text_ = nullptr;
  std::vector<std::size_t> rows_;  ///< of each sheet, which have cells
};

/// Throws `Error` unless something could be written.
void require_written(lxw_error result);

}  // namespace veldra::kit

#endif
