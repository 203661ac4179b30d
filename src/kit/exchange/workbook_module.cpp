// SPDX-License-Identifier: GPL-2.0-or-later
#include "kit/exchange/format_modules.hpp"
#include "kit/exchange/table_reader.hpp"
#include "kit/exchange/workbook_reader.hpp"
#include "kit/exchange/writers.hpp"

#include <algorithm>

namespace veldra::kit {

namespace {

class WorkbookContent : public TableContent {
 public:
  explicit WorkbookContent(const FileContent& content)
      : sheets_(read_workbook(content.text, content.file)) {}

  bool has_objects() const override {
    return std::any_of(sheets_.tables.begin(), sheets_.tables.end(),
                       [](const auto& sheet) { return sheet->content.size() > 1; });
  }

  void add_tables(std::size_t index, const TableRules&, SourceReport& report,
                  std::vector<TableSource>& tables) const override {
    report.problems.insert(report.problems.end(), sheets_.left_out.begin(), sheets_.left_out.end());
    for (const auto& sheet : sheets_.tables) {
      tables.push_back({index, sheet, {}, &report, TableKind::Materials, 1, {}});
      read_head(tables.back());
    }
  }

 private:
  WorkbookSheets sheets_;
};

}  // namespace

FormatModule workbook_module() {
  return {"XLSX",
          {"xlsx"},
          [](const FileContent& content) { return content.encoding == Encoding::Binary; },
          [](FileContent content) -> std::shared_ptr<SourceContent> {
            return std::make_shared<WorkbookContent>(content);
          },
          write_workbook,
          FormatModule::PropertiesOf::Library};
}

}  // namespace veldra::kit
